// The morning of the demo day: the installation is new, so the operating
// company is registered with its address vocabulary, its users log in, and
// the tariffs, colours, makes and models and the first vehicles go in, as
// the terminal's registration screens would do it.

#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

using Align = TextTable::Align;
using Values = std::initializer_list<std::pair<std::string_view, Variant>>;

// Fills a fresh property object and saves it as a registration screen does;
// numbered keys come back in the returned object.
template <class Manager>
auto Save(const DayContext& day, Values values) {
  auto manager = day.Use<Manager>();
  auto record = manager.Ob_cgp();
  for (const auto& [name, value] : values) record->Let(name, value);
  manager.Salvar();
  return record;
}

int32_t Code(const std::shared_ptr<cgp>& record, std::string_view column) {
  return CLng(record->Get(column));
}

std::string Text(const cgp& record, std::string_view column) { return Format(record.Get(column)); }

std::string YesNo(bool value) { return value ? "True" : "False"; }

// ---- the steps -------------------------------------------------------------

void FirstAccess(DayContext& day) {
  auto users = day.Use<cgdUsuario>();
  day.out << "  cgdUsuario.EPrimeiroAcesso = " << YesNo(users.EPrimeiroAcesso())
          << ": no user of any company yet, so the programs open the installation's first access\n";
}

struct City {
  const char* name;
  const char* abbreviation;
  const char* state;
  int32_t distance_km;  // by road from the terminal, which orders a line's stops
};

void StatesAndCities(DayContext& day) {
  const std::pair<const char*, const char*> states[] = {
      {"GO", "Goiás"}, {"DF", "Distrito Federal"}, {"MG", "Minas Gerais"}, {"SP", "São Paulo"}};
  for (const auto& [abbreviation, name] : states) {
    auto state = Save<cgdUF>(day, {{"Sg_UF", abbreviation}, {"Nm_UF", name}});
    day.facts.states[abbreviation] = Code(state, "Cd_UF");
  }
  const City cities[] = {
      {"Goiânia", "GYN", "GO", 0},         {"Anápolis", "ANS", "GO", 57},
      {"Caldas Novas", "CLV", "GO", 170},  {"Brasília", "BSB", "DF", 209},
      {"Uberlândia", "UDI", "MG", 345},    {"São Paulo", "SAO", "SP", 926},
  };
  for (const City& city : cities) {
    auto saved = Save<cgdCidade>(day, {{"Nm_Cidade", city.name},
                                      {"Sg_Cidade", city.abbreviation},
                                      {"Sg_UF", city.state},
                                      {"Cd_UF", day.facts.states.at(city.state)},
                                      {"Qt_DistanciaEmKm", city.distance_km}});
    day.facts.cities[city.name] = Code(saved, "Cd_Cidade");
  }
  day.out << "  " << std::size(states) << " states (cgdUF) and " << std::size(cities)
          << " cities (cgdCidade) registered\n\n";

  day.out << "  States' pick list by abbreviation (cgdUFs.CarregarComboBoxSomenteSigla):\n";
  ListComboBox states_list;
  day.Use<cgdUFs>().CarregarComboBoxSomenteSigla(states_list);
  PrintComboBox(day.out, states_list, "Sg_UF");

  day.out << "\n  Cities' search grid (cgdCidades.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdCidades>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid,
            {{"Cd_Cidade", Align::Right}, {"Nm_Cidade"}, {"Sg_UF"}, {"Qt_DistanciaEmKm", Align::Right}},
            count);
}

void StreetsAndPostcodes(DayContext& day) {
  const int32_t goiania = day.facts.cities.at("Goiânia");
  const int32_t anapolis = day.facts.cities.at("Anápolis");
  const std::pair<const char*, int32_t> neighbourhoods[] = {
      {"Setor Norte Ferroviário", goiania}, {"Setor Central", goiania}, {"Setor Bueno", goiania},
      {"Jundiaí", anapolis}};
  for (const auto& [name, city] : neighbourhoods) {
    auto saved = Save<cgdBairro>(day, {{"Nm_Bairro", name}, {"Cd_Cidade", city}});
    day.facts.neighbourhoods[name] = Code(saved, "Cd_Bairro");
  }
  std::map<std::string, int32_t> street_types;
  for (const auto& [name, abbreviation] :
       {std::pair{"Avenida", "Av."}, std::pair{"Rua", "R."}, std::pair{"Praça", "Pç."}}) {
    auto saved = Save<cgdTipoLogradouro>(day, {{"Nm_TipoLogradouro", name}, {"Sg_TipoLogradouro", abbreviation}});
    street_types[name] = Code(saved, "Cd_TipoLogradouro");
  }
  struct Street {
    const char* type;
    const char* name;
    int32_t city;
    const char* postcode;
  };
  const Street streets[] = {
      {"Rua", "44", goiania, "74063-010"},
      {"Avenida", "Goiás", goiania, "74005-010"},
      {"Praça", "Cívica", goiania, "74003-010"},
      {"Avenida", "Brasil Sul", anapolis, "75113-570"},
  };
  for (const Street& street : streets) {
    auto saved = Save<cgdLogradouro>(day, {{"Nm_Logradouro", street.name},
                                          {"Cd_TipoLogradouro", street_types.at(street.type)},
                                          {"Cd_Cidade", street.city}});
    Save<cgdCEP_Logradouro>(day, {{"Cd_Logradouro", Code(saved, "Cd_Logradouro")}, {"Cd_EP", street.postcode}});
  }
  for (const char* type : {"Comercial", "Cobrança", "Residencial"}) {
    Save<cgdTipoEndereco>(day, {{"Nm_TipoEndereco", type}});
  }
  day.out << "  " << std::size(neighbourhoods) << " neighbourhoods (cgdBairro), " << street_types.size()
          << " street types (cgdTipoLogradouro), " << std::size(streets)
          << " streets (cgdLogradouro) with their postcodes (cgdCEP_Logradouro), 3 address types "
             "(cgdTipoEndereco)\n\n";

  day.out << "  Postcodes' search grid (cgdCEP_Logradouros.CarregarMSFlexGridDeBusca):\n";
  ListGrid postcodes;
  TextBox count;
  day.Use<cgdCEP_Logradouros>().CarregarMSFlexGridDeBusca(postcodes, count);
  PrintGrid(day.out, postcodes, {{"Cd_EP"}, {"Nm_Logradouro"}, {"Nm_Cidade"}, {"Sg_UF"}}, count);

  day.out << "\n  Neighbourhoods of postcode 74063-010's city (cgdBairros.CarregarComboBox):\n";
  ListComboBox neighbourhoods_list;
  day.Use<cgdBairros>().CarregarComboBox(neighbourhoods_list, "TbCEP_TbLogradouro.Cd_EP = '74063-010'");
  PrintComboBox(day.out, neighbourhoods_list, "Nm_Bairro");

  day.out << "\n  Address types' pick list (cgdTiposEndereco.CarregarComboBox):\n";
  ListComboBox address_types;
  day.Use<cgdTiposEndereco>().CarregarComboBox(address_types);
  PrintComboBox(day.out, address_types, "Nm_TipoEndereco");
}

// The entry of a pick list whose text is `text`: its item data, or 0.
int32_t ItemDataOf(const ComboBox& combo, std::string_view text) {
  for (int32_t i = 0; i < combo.ListCount(); ++i) {
    if (combo.List(i) == text) return combo.ItemData(i);
  }
  return 0;
}

void OperatingCompany(DayContext& day) {
  auto person = Save<cgdPessoa>(day, {{"Nm_Pessoa", "Rodoviária de Goiânia Administração Ltda."},
                                      {"No_TipoPessoa", 2}});
  const int32_t person_code = Code(person, "Cd_Pessoa");
  Save<cgdPessoaJuridica>(day, {{"Cd_Pessoa", person_code},
                                {"No_CNPJ", "07.318.542/0001-06"},
                                {"Ds_InscricaoEstadual", "10.482.917-3"},
                                {"Nm_Fantasia", "Terminal Rodoviário de Goiânia"}});
  auto company = Save<cgdEmpresaUsuariaSistema>(
      day, {{"Cd_Pessoa", person_code}, {"Nm_Terminal", "Terminal Rodoviário de Goiânia"}});
  day.facts.company = Code(company, "Cd_EmpresaUsuariaSistema");
  day.facts.company_person = person_code;

  // The address screen offers the types and streets as pick lists.
  ListComboBox address_types;
  day.Use<cgdTiposEndereco>().CarregarComboBox(address_types);
  ListComboBox streets;
  day.Use<cgdLogradouros>().CarregarComboBox(streets, "A.Cd_Cidade = " + std::to_string(day.facts.cities.at("Goiânia")));
  Save<cgdEndereco>(day, {{"Cd_TipoEndereco", ItemDataOf(address_types, "Comercial")},
                          {"Cd_Pessoa", person_code},
                          {"Cd_Logradouro", ItemDataOf(streets, "44")},
                          {"Cd_EP", "74063-010"},
                          {"No_Imovel", 399},
                          {"Ds_Complemento", "Terminal, piso superior, sala 12"},
                          {"Cd_Bairro", day.facts.neighbourhoods.at("Setor Norte Ferroviário")}});
  Save<cgdTelefone>(day, {{"Cd_Pessoa", person_code}, {"No_TipoTelefone", 1}, {"No_Telefone", "(62) 3224-8073"}});
  Save<cgdTelefone>(day, {{"Cd_Pessoa", person_code}, {"No_TipoTelefone", 2}, {"No_Telefone", "(62) 98142-5510"}});
  Save<cgdEMail>(day, {{"Cd_Pessoa", person_code}, {"Ds_EMail", "administracao@rodoviariagoiania.com.br"}});

  // From now on every program of this installation works for this company.
  day.session->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  day.session->Ob_cgpEmpresaUsuaria(company);
  WritePrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", std::to_string(day.facts.company),
                            AppPath() / "Vek.ini");

  // Read back as the company's screen reads it.
  auto companies = day.Use<cgdEmpresaUsuariaSistema>();
  companies.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  auto found = companies.Consultar();
  auto legal = day.Use<cgdPessoaJuridica>();
  legal.Ob_cgp()->Let("Cd_Pessoa", person_code);
  legal.Consultar();
  auto address = day.Use<cgdEndereco>();
  address.Ob_cgp()->Let("Cd_TipoEndereco", ItemDataOf(address_types, "Comercial"));
  address.Ob_cgp()->Let("Cd_Pessoa", person_code);
  address.Consultar();
  auto email = day.Use<cgdEMail>();
  email.Ob_cgp()->Let("Cd_Pessoa", person_code);
  email.Consultar();
  const Variant minutes = found->Get("Qt_MinutosMaximoSaidaAposPagamento");
  PrintFacts(day.out,
             {{"Cd_EmpresaUsuariaSistema", Text(*found, "Cd_EmpresaUsuariaSistema")},
              {"Nm_Pessoa", Text(*person, "Nm_Pessoa")},
              {"Nm_Fantasia", Text(*legal.Ob_cgp(), "Nm_Fantasia")},
              {"No_CNPJ", Text(*legal.Ob_cgp(), "No_CNPJ")},
              {"Nm_Terminal", Text(*found, "Nm_Terminal")},
              {"Endereço (Comercial)", "Rua 44, " + Text(*address.Ob_cgp(), "No_Imovel") + ", " +
                                           Text(*address.Ob_cgp(), "Ds_Complemento")},
              {"", "Setor Norte Ferroviário, Goiânia - GO, CEP " + Text(*address.Ob_cgp(), "Cd_EP")},
              {"Telefones", "(62) 3224-8073, (62) 98142-5510"},
              {"E-mail", Text(*email.Ob_cgp(), "Ds_EMail")},
              {"Qt_MinutosMaximoSaidaAposPagamento",
               minutes.IsNull() ? "Null (no access-control parameters yet)" : Format(minutes)},
              {"Vek.ini", "[EmpresaUsuaria] Cd_EmpresaUsuariaSistema=" + std::to_string(day.facts.company)}});

  day.out << "\n  Operating companies' pick list (cgdEmpresaUsuariaSistema.CarregarComboBox):\n";
  ListComboBox list;
  companies.CarregarComboBox(list);
  PrintComboBox(day.out, list, "Nm_Pessoa");
}

struct User {
  const char* person;
  const char* cpf;
  const char* login;
  const char* password;
  const char* role;
};
// The passwords as the people type them; only their scrambled form is stored.
constexpr User kUsers[] = {
    {"Maria Aparecida de Souza", "123.456.789-09", "maria.souza", "pamonha2026", "cashier"},
    {"João Batista Ferreira", "987.654.321-00", "joao.ferreira", "Pequi#Goiás", "supervisor"},
};

void Users(DayContext& day) {
  TextTable table({{"Cd_Usuario", Align::Right}, {"Nm_Usuario"}, {"role"}, {"Ds_CriptoSenha"}});
  for (const User& user : kUsers) {
    auto person = Save<cgdPessoa>(day, {{"Nm_Pessoa", user.person}, {"No_TipoPessoa", 1}});
    Save<cgdPessoaFisica>(day, {{"Cd_Pessoa", Code(person, "Cd_Pessoa")}, {"No_CPF", user.cpf}});
    const std::string scrambled = Cripto(user.password);
    auto saved = Save<cgdUsuario>(day, {{"Cd_EmpresaUsuariaSistema", day.facts.company},
                                        {"Nm_Usuario", user.login},
                                        {"Ds_CriptoSenha", scrambled},
                                        {"Cd_Pessoa", Code(person, "Cd_Pessoa")}});
    day.facts.users[user.login] = Code(saved, "Cd_Usuario");
    table.AddRow({Text(*saved, "Cd_Usuario"), user.login, user.role, scrambled});
  }
  day.out << "  Passwords are stored scrambled (cgdCripto.Cripto: three hexadecimal digits a character):\n";
  table.Print(day.out);

  day.out << "\n  Users' search grid (cgdUsuarios.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdUsuarios>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid, {{"Cd_Usuario", Align::Right}, {"Nm_Pessoa"}, {"Nm_Usuario"}}, count);
  day.out << "\n  cgdUsuario.EPrimeiroAcesso = " << YesNo(day.Use<cgdUsuario>().EPrimeiroAcesso()) << "\n";
}

void Login(DayContext& day) {
  TextTable table({{"Nm_Usuario"}, {"password typed"}, {"Cd_Usuario", Align::Right}, {"result"}});
  auto try_login = [&](const User& user, const std::string& typed) {
    auto users = day.Use<cgdUsuario>();
    auto record = users.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    record->Let("Nm_Usuario", user.login);
    record->Let("Ds_CriptoSenha", Cripto(typed));
    auto found = users.Consultar();
    const int32_t code = Code(found, "Cd_Usuario");
    std::string result = "refused: wrong name or password";
    if (code != 0) {
      auto person = day.Use<cgdPessoa>();
      person.Ob_cgp()->Let("Cd_Pessoa", found->Get("Cd_Pessoa"));
      result = "welcome, " + Text(*person.Consultar(), "Nm_Pessoa");
    }
    table.AddRow({user.login, typed, std::to_string(code), result});
  };
  day.Advance(25);  // the cashier arrives for the first shift
  try_login(kUsers[0], kUsers[0].password);
  try_login(kUsers[1], "pequi#goias");
  try_login(kUsers[1], kUsers[1].password);
  day.out << "  cgdUsuario.Consultar by name and scrambled password, at "
          << Format(Variant(day.session->Now()), "hh:Nn") << ":\n";
  table.Print(day.out);
}

void Tariffs(DayContext& day) {
  day.out << "  Revenue types, fixed rows of every database (cgdTiposReceita.CarregarComboBox):\n";
  ListComboBox types;
  day.Use<cgdTiposReceita>().CarregarComboBox(types);
  PrintComboBox(day.out, types, "Nm_TipoReceita");

  struct Tariff {
    const char* description;
    int64_t centavos;
    const char* type;
  };
  const Tariff tariffs[] = {
      {"Taxa de embarque intermunicipal", 450, "EMBARQUE"},
      {"Estacionamento - hora", 800, "ESTACIONAMENTO"},
      {"Sanitário", 200, "SANITARIO"},
      {"Guarda-volumes - volume", 1000, "MALEX"},
  };
  TextTable table({{"Cd_Tarifa", Align::Right}, {"Ds_Tarifa"}, {"Vl_Tarifa", Align::Right}, {"Cd_TipoReceita", Align::Right}});
  for (const Tariff& tariff : tariffs) {
    auto saved = Save<cgdTarifa>(day, {{"Cd_EmpresaUsuariaSistema", day.facts.company},
                                       {"Ds_Tarifa", tariff.description},
                                       {"Vl_Tarifa", Currency::FromRaw(tariff.centavos * 100)},
                                       {"Cd_TipoReceita", ItemDataOf(types, tariff.type)}});
    day.facts.tariffs[tariff.description] = Code(saved, "Cd_Tarifa");
    // Read back, so the price shown is the one the database keeps.
    auto read = day.Use<cgdTarifa>();
    read.Ob_cgp()->Let("Cd_Tarifa", saved->Get("Cd_Tarifa"));
    auto kept = read.Consultar();
    table.AddRow({Text(*kept, "Cd_Tarifa"), Text(*kept, "Ds_Tarifa"), Money(CCur(kept->Get("Vl_Tarifa"))),
                  Text(*kept, "Cd_TipoReceita")});
  }
  day.out << "\n  The company's tariffs (cgdTarifa.Salvar, then Consultar):\n";
  table.Print(day.out);

  day.out << "\n  Tariffs' search grid (cgdTarifas.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdTarifas>().CarregarMSFlexGridDeBusca(
      grid, count, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company));
  PrintGrid(day.out, grid, {{"Cd_Tarifa", Align::Right}, {"Ds_Tarifa"}, {"Nm_TipoReceita"}}, count);
}

void ColoursAndModels(DayContext& day) {
  for (const char* colour : {"Branco", "Prata", "Preto", "Vermelho", "Azul"}) {
    day.facts.colours[colour] = Code(Save<cgdCor>(day, {{"Nm_Cor", colour}}), "Cd_Cor");
  }
  for (const char* model : {"Volkswagen Gol", "Fiat Strada", "Chevrolet Onix", "Toyota Hilux", "Honda CG 160"}) {
    day.facts.models[model] = Code(Save<cgdMarcaModelo>(day, {{"Ds_MarcaModelo", model}}), "Cd_MarcaModelo");
  }
  day.out << "  Colours' pick list (cgdCor.CarregarComboBox):\n";
  ListComboBox colours;
  day.Use<cgdCor>().CarregarComboBox(colours);
  PrintComboBox(day.out, colours, "Nm_Cor");

  day.out << "\n  Makes and models' search grid (cgdMarcaModelo.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdMarcaModelo>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid, {{"Cd_MarcaModelo", Align::Right}, {"Ds_MarcaModelo"}}, count);

  // The yard screen finds a make and model by what the attendant types.
  auto by_description = day.Use<cgdMarcaModelo>();
  by_description.Ob_cgp()->Let("Ds_MarcaModelo", "Fiat Strada");
  day.out << "\n  cgdMarcaModelo.Consultar by description \"Fiat Strada\": Cd_MarcaModelo = "
          << Text(*by_description.Consultar(), "Cd_MarcaModelo") << "\n";
}

void Vehicles(DayContext& day) {
  struct Vehicle {
    const char* plate;
    const char* colour;
    const char* model;
  };
  const Vehicle vehicles[] = {
      {"PQA1B23", "Prata", "Volkswagen Gol"},
      {"OGX4C56", "Branco", "Fiat Strada"},
      {"QTR7E89", "Preto", "Chevrolet Onix"},
  };
  for (const Vehicle& vehicle : vehicles) {
    Save<cgdVeiculo>(day, {{"Cd_Placa", vehicle.plate},
                           {"Cd_Cor", day.facts.colours.at(vehicle.colour)},
                           {"Cd_MarcaModelo", day.facts.models.at(vehicle.model)}});
    Save<cgdVeiculoEstacionamento>(day, {{"Cd_Placa", vehicle.plate}, {"Cd_EmpresaUsuariaSistema", day.facts.company}});
    day.facts.plates.push_back(vehicle.plate);
  }

  day.out << "  The car park's vehicles, read back with their vehicle (cgdVeiculoEstacionamento.Consultar):\n";
  TextTable table({{"Cd_Placa"}, {"Nm_Cor"}, {"Ds_MarcaModelo"}, {"Cd_EmpresaUsuariaSistema", Align::Right}});
  for (const std::string& plate : day.facts.plates) {
    auto parking = day.Use<cgdVeiculoEstacionamento>();
    parking.Ob_cgp()->Let("Cd_Placa", plate);
    parking.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    auto found = parking.Consultar();
    auto colour = day.Use<cgdCor>();
    colour.Ob_cgp()->Let("Cd_Cor", found->Get("Cd_Cor"));
    auto model = day.Use<cgdMarcaModelo>();
    model.Ob_cgp()->Let("Cd_MarcaModelo", found->Get("Cd_MarcaModelo"));
    table.AddRow({Text(*found, "Cd_Placa"), Text(*colour.Consultar(), "Nm_Cor"),
                  Text(*model.Consultar(), "Ds_MarcaModelo"), Text(*found, "Cd_EmpresaUsuariaSistema")});
  }
  table.Print(day.out);

  auto unknown = day.Use<cgdVeiculo>();
  unknown.Ob_cgp()->Let("Cd_Placa", "ABC1D23");
  auto known = day.Use<cgdVeiculo>();
  known.Ob_cgp()->Let("Cd_Placa", day.facts.plates.front());
  day.out << "\n  cgdVeiculo.Existe: " << day.facts.plates.front() << " " << YesNo(known.Existe())
          << ", ABC1D23 " << YesNo(unknown.Existe()) << "\n";

  ListGrid grid;
  TextBox count;
  day.Use<cgdVeiculos>().CarregarMSFlexGridDeBusca(grid, count);
  day.out << "  Vehicles' search grid (cgdVeiculos.CarregarMSFlexGridDeBusca): " << count.Text()
          << " rows; it lists buses of bus companies, and none is registered yet\n";
}

void People(DayContext& day) {
  day.out << "  People's search grid (cgdPessoas.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdPessoas>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid, {{"Cd_Pessoa", Align::Right}, {"Nm_Pessoa"}, {"No_CPF"}, {"No_CNPJ"}}, count);
}

}  // namespace

std::vector<DayStep> RegistryDay() {
  return {
      {"First access", FirstAccess},
      {"States and cities", StatesAndCities},
      {"Neighbourhoods, streets and postcodes", StreetsAndPostcodes},
      {"The operating company", OperatingCompany},
      {"Cashier and supervisor", Users},
      {"Login", Login},
      {"Revenue types and tariffs", Tariffs},
      {"Colours, makes and models", ColoursAndModels},
      {"Vehicles", Vehicles},
      {"People registered", People},
  };
}

}  // namespace vek::cli::demo

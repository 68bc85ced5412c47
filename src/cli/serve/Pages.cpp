// The pages, style sheet and scripts of the web screens, kept together here.

#include "cli/serve/Pages.h"

#include "cli/serve/Escape.h"

namespace vek::cli::serve {
namespace {

// Large type and high contrast: the board is read across a hall.
constexpr std::string_view kStyle = R"CSS(
* { box-sizing: border-box; }
html, body { margin: 0; background: #000; color: #fff; font-family: "DejaVu Sans", Arial, sans-serif; }
header { display: flex; justify-content: space-between; align-items: baseline; padding: 0.4em 1em; background: #102a7a; }
header h1 { margin: 0; font-size: 2.4em; letter-spacing: 0.04em; }
#relogio { font-size: 3em; font-weight: bold; color: #ffd500; font-variant-numeric: tabular-nums; }
#estado { padding: 0.3em 1.4em; font-size: 1.1em; color: #cfd8ff; }
main { display: flex; flex-wrap: wrap; gap: 1em; padding: 0 1em 1em; }
section { flex: 1 1 40em; }
h2 { margin: 0.3em 0; font-size: 2.2em; color: #ffd500; text-transform: uppercase; }
table { width: 100%; border-collapse: collapse; font-size: 1.6em; }
th { text-align: left; color: #9fb3ff; font-weight: normal; border-bottom: 3px solid #ffd500; padding: 0.2em 0.4em; }
td { padding: 0.35em 0.4em; border-bottom: 1px solid #333; }
tbody tr:nth-child(even) { background: #111; }
td.hora { font-weight: bold; color: #ffd500; font-variant-numeric: tabular-nums; }
td.plat { text-align: center; font-weight: bold; }
td.s1 { color: #000; background: #ffd500; font-weight: bold; }
td.s2 { color: #9a9a9a; }
td.s3 { color: #7dff8a; }
td.vazio { color: #9a9a9a; font-style: italic; }
#aviso { display: none; margin: 0.5em 1em; padding: 0.5em 0.8em; font-size: 2em; font-weight: bold; color: #000; background: #ffd500; }
body.avisando #aviso { display: block; }
#desatualizado { display: none; margin: 2em 1em; padding: 1em; font-size: 2.4em; font-weight: bold; color: #fff; background: #b00020; }
body.desatualizado #desatualizado { display: block; }
body.desatualizado main, body.desatualizado #aviso { display: none; }
)CSS";

constexpr std::string_view kBoardScript = R"JS('use strict';
// Redraws the board from /api/board every two seconds; after a minute
// without an answer the trips are hidden and the board says it is out of date.
const som = new URLSearchParams(location.search).get('som') === '1';
const body = document.body;
let ultimaResposta = Date.now();
let ultimaRespostaTexto = new Date().toLocaleTimeString('pt-BR');
let avisoAte = 0;
const anunciados = new Set();

function celula(linha, texto, classe) {
  const td = document.createElement('td');
  td.textContent = texto;
  if (classe) td.className = classe;
  linha.appendChild(td);
}

function preencher(id, viagens) {
  const antigo = document.querySelector('#' + id + ' tbody');
  const novo = document.createElement('tbody');
  for (const v of viagens) {
    const tr = document.createElement('tr');
    tr.dataset.viagem = v.viagem;
    celula(tr, v.previsto, 'hora');
    celula(tr, v.origem);
    celula(tr, v.destino);
    celula(tr, v.empresa);
    celula(tr, v.plataforma, 'plat');
    celula(tr, v.situacao, 'sit s' + v.andamento);
    novo.appendChild(tr);
  }
  if (viagens.length === 0) {
    const tr = document.createElement('tr');
    celula(tr, 'Nenhuma viagem', 'vazio');
    tr.firstChild.colSpan = 6;
    novo.appendChild(tr);
  }
  antigo.replaceWith(novo);
}

function falar(texto) {
  if (!('speechSynthesis' in window)) return;
  const fala = new SpeechSynthesisUtterance(texto);
  fala.lang = 'pt-BR';
  window.speechSynthesis.speak(fala);
}

async function anunciar(avisos) {
  for (const a of avisos) {
    document.getElementById('aviso').textContent = a.texto;
    avisoAte = Date.now() + 30000;
    body.classList.add('avisando');
    if (!som || anunciados.has(a.agenda)) continue;
    anunciados.add(a.agenda);
    // Only the screen whose mark is taken speaks: two screens never repeat it.
    try {
      const r = await fetch('/api/avisos/' + a.agenda + '/feito', { method: 'POST' });
      if (r.status === 200) falar(a.texto);
    } catch (e) { anunciados.delete(a.agenda); }
  }
}

async function atualizar() {
  try {
    const r = await fetch('/api/board', { cache: 'no-store' });
    if (!r.ok) throw new Error(r.status);
    const d = await r.json();
    preencher('chegadas', d.chegadas);
    preencher('partidas', d.partidas);
    document.getElementById('atualizado').textContent = d.atualizado;
    ultimaResposta = Date.now();
    ultimaRespostaTexto = new Date().toLocaleTimeString('pt-BR');
    body.classList.remove('desatualizado');
    await anunciar(d.avisos);
  } catch (e) {
    // The page keeps what it has until a minute has passed.
  } finally {
    setTimeout(atualizar, 2000);
  }
}

function relogio() {
  document.getElementById('relogio').textContent =
    new Date().toLocaleTimeString('pt-BR', { hour: '2-digit', minute: '2-digit', second: '2-digit' });
  if (Date.now() - ultimaResposta > 60000) {
    document.getElementById('desde').textContent = ultimaRespostaTexto;
    body.classList.add('desatualizado');
  }
  if (Date.now() > avisoAte) body.classList.remove('avisando');
}

relogio();
setInterval(relogio, 1000);
atualizar();
)JS";

constexpr std::string_view kYardScript = R"JS('use strict';
// Redraws the yard from /api/patio every five seconds.
let ultimaResposta = Date.now();
let ultimaRespostaTexto = new Date().toLocaleTimeString('pt-BR');

async function atualizar() {
  try {
    const r = await fetch('/api/patio', { cache: 'no-store' });
    if (!r.ok) throw new Error(r.status);
    const d = await r.json();
    const novo = document.createElement('tbody');
    for (const v of d.veiculos) {
      const tr = document.createElement('tr');
      for (const [texto, classe] of [[v.entrada, 'hora'], [v.mensalista ? 'Mensalista' : 'Avulso', ''], [v.ticket, '']]) {
        const td = document.createElement('td');
        td.textContent = texto;
        if (classe) td.className = classe;
        tr.appendChild(td);
      }
      novo.appendChild(tr);
    }
    document.querySelector('#patio tbody').replaceWith(novo);
    document.getElementById('quantidade').textContent = d.quantidade;
    document.getElementById('atualizado').textContent = d.atualizado;
    ultimaResposta = Date.now();
    ultimaRespostaTexto = new Date().toLocaleTimeString('pt-BR');
    document.body.classList.remove('desatualizado');
  } catch (e) {
  } finally {
    setTimeout(atualizar, 5000);
  }
}

function relogio() {
  document.getElementById('relogio').textContent =
    new Date().toLocaleTimeString('pt-BR', { hour: '2-digit', minute: '2-digit', second: '2-digit' });
  if (Date.now() - ultimaResposta > 60000) {
    document.getElementById('desde').textContent = ultimaRespostaTexto;
    document.body.classList.add('desatualizado');
  }
}

relogio();
setInterval(relogio, 1000);
atualizar();
)JS";

std::string Head(std::string_view title) {
  std::string page = "<!DOCTYPE html>\n<html lang=\"pt-BR\">\n<head>\n<meta charset=\"utf-8\">\n"
                     "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
  page += title;
  page += "</title>\n<link rel=\"stylesheet\" href=\"/static/estilo.css\">\n</head>\n";
  return page;
}

std::string Cell(const std::string& text, const char* cls = nullptr) {
  std::string cell = cls ? std::string("<td class=\"") + cls + "\">" : std::string("<td>");
  return cell + HtmlEscape(text) + "</td>";
}

std::string Panel(const char* id, const char* caption, const std::vector<BoardRow>* rows) {
  std::string html = std::string("<section id=\"") + id + "\">\n<h2>" + caption +
                     "</h2>\n<table>\n<thead><tr><th>Horário</th><th>Origem</th><th>Destino</th><th>Empresa</th>"
                     "<th>Plataforma</th><th>Situação</th></tr></thead>\n<tbody>\n";
  if (rows == nullptr || rows->empty()) {
    html += "<tr><td class=\"vazio\" colspan=\"6\">Nenhuma viagem</td></tr>\n";
  } else {
    for (const BoardRow& row : *rows) {
      const std::string state_class = "sit s" + std::to_string(row.progress);
      html += "<tr data-viagem=\"" + std::to_string(row.trip) + "\">" + Cell(row.expected, "hora") + Cell(row.origin) +
              Cell(row.destination) + Cell(row.company) + Cell(row.platform, "plat") +
              Cell(row.state, state_class.c_str()) + "</tr>\n";
    }
  }
  return html + "</tbody>\n</table>\n</section>\n";
}

std::string Status(const std::string* updated) {
  return "<div id=\"estado\">Atualizado em <span id=\"atualizado\">" +
         (updated ? HtmlEscape(*updated) : std::string("(banco de dados indisponível)")) + "</span></div>\n" +
         "<div id=\"desatualizado\">QUADRO DESATUALIZADO: o servidor não responde desde <span id=\"desde\"></span>."
         " As viagens não são mostradas até ele voltar.</div>\n";
}

}  // namespace

std::string BoardPage(const Board* board) {
  std::string page = Head("Chegadas e Partidas");
  const bool announcing = board && !board->announcements.empty();
  page += announcing ? "<body class=\"avisando\">\n" : "<body>\n";
  page += "<header><h1>Chegadas e Partidas</h1><div id=\"relogio\"></div></header>\n";
  page += Status(board ? &board->updated : nullptr);
  page += "<div id=\"aviso\" role=\"alert\">" + (announcing ? HtmlEscape(board->announcements.front().text) : "") +
          "</div>\n<main>\n";
  page += Panel("chegadas", "Chegadas", board ? &board->arrivals : nullptr);
  page += Panel("partidas", "Partidas", board ? &board->departures : nullptr);
  page += "</main>\n<script src=\"/static/painel.js\"></script>\n</body>\n</html>\n";
  return page;
}

std::string YardPage(const Yard* yard) {
  std::string page = Head("Pátio do estacionamento");
  page += "<body>\n<header><h1>Pátio do estacionamento</h1><div id=\"relogio\"></div></header>\n";
  page += Status(yard ? &yard->updated : nullptr);
  page += "<main>\n<section id=\"patio\">\n<h2><span id=\"quantidade\">" +
          std::to_string(yard ? yard->vehicles.size() : 0) +
          "</span> veículos no pátio</h2>\n<table>\n<thead><tr><th>Entrada</th><th>Tipo</th><th>Ticket</th></tr>"
          "</thead>\n<tbody>\n";
  if (yard) {
    for (const YardVehicle& vehicle : yard->vehicles) {
      page += "<tr>" + Cell(vehicle.entry, "hora") + Cell(vehicle.monthly ? "Mensalista" : "Avulso") +
              Cell(vehicle.ticket) + "</tr>\n";
    }
  }
  page += "</tbody>\n</table>\n</section>\n</main>\n<script src=\"/static/patio.js\"></script>\n</body>\n</html>\n";
  return page;
}

std::string_view StaticResource(std::string_view name, std::string_view& type) {
  if (name == "estilo.css") {
    type = "text/css; charset=utf-8";
    return kStyle;
  }
  if (name == "painel.js" || name == "patio.js") {
    type = "text/javascript; charset=utf-8";
    return name == "painel.js" ? kBoardScript : kYardScript;
  }
  return {};
}

}  // namespace vek::cli::serve

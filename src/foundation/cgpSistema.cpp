#include "vek/foundation/cgpSistema.h"

#include "vek/db/Connection.h"
#include "vek/foundation/SessionSettings.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Text.h"
#include "vek/schema/Procedures.h"

namespace vek {
namespace {

constexpr std::string_view kConnectionStringProperty = "Ds_StringConexaoDB";

std::shared_ptr<const PropertyList> SessionProperties() {
  static const std::shared_ptr<const PropertyList> list = [] {
    std::vector<PropertyDef> properties;
    for (const SettingDef& setting : SessionSettings()) {
      properties.push_back({std::string(setting.property), setting.type});
    }
    return std::make_shared<const PropertyList>(std::move(properties));
  }();
  return list;
}

}  // namespace

cgpSistema::cgpSistema()
    : cgp(SessionProperties()),
      clock_(std::make_shared<SystemClock>()),
      progress_(std::make_shared<SilentProgress>()),
      messages_(std::make_shared<SilentMessageBox>()) {
  cgpSistema::RestaurarDefault();
}

void cgpSistema::RestaurarDefault() {
  cgp::RestaurarDefault();
  // A session that was never configured works on the embedded database with
  // the cursor and lock that the list loaders always use.
  cgp::Let("Cd_DB", Variant(static_cast<int32_t>(BancoDadosSQLite3)));
  cgp::Let("Cursor", Variant(static_cast<int32_t>(adOpenKeyset)));
  cgp::Let("LockType", Variant(static_cast<int32_t>(adLockOptimistic)));
}

Variant cgpSistema::Get(std::string_view name) const {
  if (EqualsIgnoreCase(name, kConnectionStringProperty)) return Ds_StringConexaoDB();
  return cgp::Get(name);
}

void cgpSistema::Let(std::string_view name, const Variant& value) {
  if (EqualsIgnoreCase(name, kConnectionStringProperty)) {
    RaiseRuntimeError(kObjectDoesNotSupportProperty);
  }
  cgp::Let(name, value);
}

bool cgpSistema::HasProperty(std::string_view name) const {
  return EqualsIgnoreCase(name, kConnectionStringProperty) || cgp::HasProperty(name);
}

namespace {

// The server setting "[user@]host[:port]", each part optional but the host.
struct ServerAddress {
  std::string user;
  std::string host;
  std::string port;
};

ServerAddress ReadServer(const std::string& setting, std::string_view default_user,
                         std::string_view default_port) {
  ServerAddress address{std::string(default_user), setting, std::string(default_port)};
  if (const size_t at = address.host.rfind('@'); at != std::string::npos) {
    address.user = address.host.substr(0, at);
    address.host.erase(0, at + 1);
  }
  if (const size_t colon = address.host.rfind(':'); colon != std::string::npos) {
    address.port = address.host.substr(colon + 1);
    address.host.erase(colon);
  }
  return address;
}

}  // namespace

std::string cgpSistema::Ds_StringConexaoDB() const {
  const int32_t kind = CLng(cgp::Get("Cd_DB"));
  const std::string database = CStr(cgp::Get("Ds_CaminhoDB"));
  const std::string server = CStr(cgp::Get("Nm_ServidorDB"));
  const std::string password = CStr(cgp::Get("Ds_SenhaDB"));
  switch (kind) {
    case 0:
    case BancoDadosSQLite3: return "Driver=SQLite3;Database=" + database;
    case BancoDadosPostgreSQL: {
      const ServerAddress address = ReadServer(server, "postgres", "5432");
      return "Driver={PostgreSQL Unicode};Server=" + address.host + ";Port=" + address.port +
             ";Database=" + database + ";Uid=" + address.user + ";Pwd=" + password;
    }
    default: {
      // SQL Server (and the old Firebird kind) through FreeTDS.
      const ServerAddress address = ReadServer(server, "sa", "1433");
      return "Driver={FreeTDS};Server=" + address.host + ";Port=" + address.port + ";Database=" + database +
             ";Uid=" + address.user + ";Pwd=" + password + ";TDS_Version=7.4;ClientCharset=UTF-8";
    }
  }
}

std::shared_ptr<Connection> cgpSistema::AbrirConexao() {
  auto connection = std::make_shared<Connection>();
  connection->SetClock(clock_);
  connection->Open(Ds_StringConexaoDB());
  schema::InstallProcedures(*connection);
  connection_ = connection;
  return connection;
}

std::shared_ptr<Connection> cgpSistema::Ob_Conexao() const {
  if (!connection_) RaiseRuntimeError(kObjectVariableNotSet);
  return connection_;
}

void cgpSistema::Ob_Conexao(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
  if (connection_) connection_->SetClock(clock_);
}

void cgpSistema::SetClock(std::shared_ptr<Clock> clock) {
  clock_ = clock ? std::move(clock) : std::make_shared<SystemClock>();
  if (connection_) connection_->SetClock(clock_);
}

Date cgpSistema::Now() const { return clock_->Now(); }

ProgressWindow& cgpSistema::Progress() const { return *progress_; }

void cgpSistema::SetProgress(std::shared_ptr<ProgressWindow> progress) {
  progress_ = progress ? std::move(progress) : std::make_shared<SilentProgress>();
}

MessageBox& cgpSistema::Messages() const { return *messages_; }

void cgpSistema::SetMessages(std::shared_ptr<MessageBox> messages) {
  messages_ = messages ? std::move(messages) : std::make_shared<SilentMessageBox>();
}

}  // namespace vek

#include "vek/foundation/cgdModulo.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Format.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr std::string_view kModule = "cgdModulo";
// 01/01/1900: time-only values lie on or before it.
constexpr double kFirstRealDay = 2.0;

// Runs one assignment, skipping the errors a single late-bound one may raise.
template <class Assignment>
void SkippingAssignmentErrors(Assignment&& assignment) {
  try {
    assignment();
  } catch (const VekError& error) {
    if (!IsSkippedAssignmentError(error.Number())) throw;
  }
}

bool IsZeroNumber(const Variant& value) {
  return (value.IsNumber() || value.Type() == VariantType::Boolean) && CDbl(value) == 0;
}

// The value of one property as the copy writes it into its field.
Variant ValueToWrite(std::string_view name, const Variant& value, const cgpSistema* session) {
  if (EqualsIgnoreCase(name, "Hr_Inicial") || EqualsIgnoreCase(name, "Hr_Final")) {
    return Format(value, "hh:Nn:ss");
  }
  if (!value.IsDate()) {
    if (UCase(Left(name, 3)) == "CD_" && IsZeroNumber(value)) {
      if (EqualsIgnoreCase(name, "Cd_PessoaUsuaria")) {
        if (!session || !session->Ob_cgpEmpresaUsuaria()) RaiseRuntimeError(kObjectVariableNotSet);
        return session->Ob_cgpEmpresaUsuaria()->Get("Cd_Pessoa");
      }
      return Variant::Null();
    }
    return value;
  }
  if (value.Get<Date>()->Serial() > kFirstRealDay) return value;
  // A duration kept as a time of day is the one date that may lie before 1900.
  if (EqualsIgnoreCase(name, "Hr_MaximoPermanencia")) return value;
  return Variant::Null();
}

}  // namespace

bool IsSkippedAssignmentError(int32_t number) {
  return number == kTypeMismatch || number == kObjectDoesNotSupportProperty || number == kAutomationError;
}

void TransferirDadosDeCgpParaBd(cgp& Ob_cgp, Recordset& Ob_Rs, const cgpSistema* Ob_cgpSistema) {
  Trap(kModule, "TransferirDadosDeCgpParaBd", [&] {
    Fields& fields = Ob_Rs.Fields();
    for (int32_t i = 0; i < fields.Count(); ++i) {
      Field& field = fields.Item(i);
      const std::string& name = field.Name();
      if (!Ob_cgp.HasProperty(name)) continue;
      SkippingAssignmentErrors([&] {
        if (CBool(field.Properties("ISAUTOINCREMENT").Value())) {
          Ob_cgp.Let(name, field.Value());
          return;
        }
        field.Value(ValueToWrite(name, Ob_cgp.Get(name), Ob_cgpSistema));
      });
    }
  });
}

bool pegarValorCamposSequencial(RecordManager& Ob_cgd, Recordset& Ob_Rs) {
  return Trap(kModule, "pegarValorCamposSequencial", [&] {
    if (!Ob_cgd.temCampoSequencial()) return false;
    cgp& record = Ob_cgd.RecordObject();
    for (const std::string& name : Ob_cgd.nomeCamposSequencial()) {
      record.Let(name, Ob_Rs.Fields().Item(name).Value());
    }
    return true;
  });
}

void CopyRowToProperties(Recordset& Ob_Rs, cgp& Ob_cgp) {
  Fields& fields = Ob_Rs.Fields();
  for (int32_t i = 0; i < fields.Count(); ++i) {
    Field& field = fields.Item(i);
    SkippingAssignmentErrors([&] { Ob_cgp.Let(field.Name(), field.Value()); });
  }
}

}  // namespace vek

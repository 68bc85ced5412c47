#include "vek/db/Command.h"

#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

std::string_view WithoutAt(std::string_view name) {
  return !name.empty() && name.front() == '@' ? name.substr(1) : name;
}

}  // namespace

Parameter::Parameter(std::string name, DataTypeEnum type, ParameterDirectionEnum direction,
                     int32_t size, Variant value)
    : name_(std::move(name)), type_(type), direction_(direction), size_(size), value_(std::move(value)) {}

void Parameters::Append(std::shared_ptr<Parameter> parameter) {
  if (!parameter) RaiseAdoError(adErrInvalidArgument, "ADODB.Parameters");
  items_.push_back(std::move(parameter));
}

Parameter& Parameters::Item(int32_t index) {
  if (index < 0 || index >= Count()) RaiseAdoError(adErrItemNotFound, "ADODB.Parameters");
  return *items_[static_cast<size_t>(index)];
}

Parameter& Parameters::Item(std::string_view name) {
  for (const auto& parameter : items_) {
    if (EqualsIgnoreCase(WithoutAt(parameter->Name()), WithoutAt(name))) return *parameter;
  }
  RaiseAdoError(adErrItemNotFound, "ADODB.Parameters");
}

void Parameters::Delete(int32_t index) {
  Item(index);
  items_.erase(items_.begin() + index);
}

std::shared_ptr<Parameter> Command::CreateParameter(std::string name, DataTypeEnum type,
                                                    ParameterDirectionEnum direction, int32_t size,
                                                    Variant value) {
  return std::make_shared<Parameter>(std::move(name), type, direction, size, std::move(value));
}

std::shared_ptr<Recordset> Command::Execute() {
  int32_t ignored = 0;
  return Execute(ignored);
}

std::shared_ptr<Recordset> Command::Execute(int32_t& records_affected) {
  if (!connection_ || connection_->State() != adStateOpen) {
    RaiseAdoError(adErrObjectClosed, "ADODB.Command");
  }
  auto recordset = std::make_shared<Recordset>();
  records_affected = -1;
  if (type_ == adCmdStoredProc) {
    connection_->CallProcedure(text_, parameters_);
    return recordset;
  }
  std::vector<Variant> inputs;
  for (int32_t i = 0; i < parameters_.Count(); ++i) {
    const Parameter& parameter = parameters_.Item(i);
    if (parameter.Direction() == adParamInput || parameter.Direction() == adParamInputOutput ||
        parameter.Direction() == adParamUnknown) {
      inputs.push_back(parameter.Value());
    }
  }
  QueryResult result = connection_->RunStatement(text_, inputs);
  records_affected = static_cast<int32_t>(result.records_affected);
  if (result.returns_rows) recordset->Attach(std::move(result), connection_);
  return recordset;
}

}  // namespace vek

#pragma once
// Commands with parameters, as the classic Command, Parameter and Parameters.
// A command of type adCmdStoredProc calls a procedure registered on the
// connection; its output parameters are readable after Execute.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vek/db/Enums.h"
#include "vek/platform/Variant.h"

namespace vek {

class Connection;
class Recordset;

class Parameter {
 public:
  Parameter(std::string name, DataTypeEnum type, ParameterDirectionEnum direction, int32_t size,
            Variant value);

  const std::string& Name() const { return name_; }
  DataTypeEnum Type() const { return type_; }
  ParameterDirectionEnum Direction() const { return direction_; }
  int32_t Size() const { return size_; }
  const Variant& Value() const { return value_; }
  void Value(Variant value) { value_ = std::move(value); }

 private:
  std::string name_;
  DataTypeEnum type_;
  ParameterDirectionEnum direction_;
  int32_t size_;
  Variant value_;
};

class Parameters {
 public:
  void Append(std::shared_ptr<Parameter> parameter);
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  // By index or by name in any case (with or without the leading "@");
  // an unknown one is error 3265.
  Parameter& Item(int32_t index);
  Parameter& Item(std::string_view name);
  Parameter& operator[](int32_t index) { return Item(index); }
  Parameter& operator[](std::string_view name) { return Item(name); }
  void Delete(int32_t index);

 private:
  std::vector<std::shared_ptr<Parameter>> items_;
};

class Command {
 public:
  const std::shared_ptr<Connection>& ActiveConnection() const { return connection_; }
  void ActiveConnection(std::shared_ptr<Connection> connection) { connection_ = std::move(connection); }
  const std::string& CommandText() const { return text_; }
  void CommandText(std::string text) { text_ = std::move(text); }
  CommandTypeEnum CommandType() const { return type_; }
  void CommandType(CommandTypeEnum type) { type_ = type; }

  std::shared_ptr<Parameter> CreateParameter(std::string name, DataTypeEnum type = adEmpty,
                                             ParameterDirectionEnum direction = adParamInput,
                                             int32_t size = 0, Variant value = Variant());
  vek::Parameters& Parameters() { return parameters_; }

  // Runs the command: text with "?" placeholders bound to the input
  // parameters in order, or the stored procedure. Returns an open record set
  // for rows and a closed one otherwise.
  std::shared_ptr<Recordset> Execute();
  std::shared_ptr<Recordset> Execute(int32_t& records_affected);

 private:
  std::shared_ptr<Connection> connection_;
  std::string text_;
  CommandTypeEnum type_ = adCmdText;
  vek::Parameters parameters_;
};

}  // namespace vek

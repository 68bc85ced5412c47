#include "vek/db/Recordset.h"

#include <map>
#include <utility>

#include "vek/db/Connection.h"
#include "vek/db/DbError.h"

namespace vek {
namespace {

constexpr const char* kObject = "ADODB.Recordset";

// A value written into a field takes the field's type, as the classic
// objects converted on assignment; the conversion's own error (13, 6) stands.
Variant ConvertForField(const Variant& value, DataTypeEnum type) {
  if (value.IsNull() || value.IsEmpty()) return Variant::Null();
  switch (type) {
    case adSmallInt: return CInt(value);
    case adInteger: return CLng(value);
    case adTinyInt:
    case adUnsignedTinyInt: return CByte(value);
    case adBoolean: return CBool(value);
    case adCurrency: return CCur(value);
    case adSingle:
    case adDouble:
    case adDecimal:
    case adNumeric:
    case adBigInt: return CDbl(value);
    case adDate:
    case adDBDate:
    case adDBTime:
    case adDBTimeStamp: return CDate(value);
    case adChar:
    case adWChar:
    case adVarChar:
    case adLongVarChar:
    case adVarWChar:
    case adLongVarWChar: return CStr(value);
    default: return value;
  }
}

}  // namespace

void Recordset::Open(const std::string& source, std::shared_ptr<Connection> connection,
                     CursorTypeEnum cursor_type, LockTypeEnum lock_type, int32_t options) {
  if (open_) RaiseAdoError(adErrObjectOpen, kObject);
  if (!source.empty()) source_ = source;
  table_ = options == adCmdTable || options == adCmdTableDirect;
  if (connection) connection_ = std::move(connection);
  if (cursor_type != adOpenUnspecified) cursor_type_ = cursor_type;
  if (lock_type != adLockUnspecified) lock_type_ = lock_type;
  Open();
}

void Recordset::Open() {
  if (open_) RaiseAdoError(adErrObjectOpen, kObject);
  if (!connection_ || connection_->State() != adStateOpen) {
    RaiseAdoError(adErrObjectClosed, kObject);
  }
  // A table is opened whole, as the provider reads it for appending.
  QueryResult result = connection_->RunStatement(table_ ? "SELECT * FROM " + source_ : source_);
  if (!result.returns_rows) {
    // Text that returns no rows leaves the record set closed, as before.
    return;
  }
  Attach(std::move(result), connection_);
}

void Recordset::Attach(QueryResult result, std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
  columns_ = std::move(result.columns);
  rows_ = std::move(result.rows);
  position_ = 0;
  edit_mode_ = EditMode::None;
  fields_.Reset(*this, columns_.get());
  open_ = true;
}

void Recordset::Close() {
  RequireOpen();
  open_ = false;
  edit_mode_ = EditMode::None;
  rows_.clear();
  columns_.reset();
  fields_.Reset(*this, nullptr);
}

void Recordset::ActiveConnection(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
}

const std::vector<ColumnInfo>& Recordset::Columns() const {
  static const std::vector<ColumnInfo> kNone;
  return columns_ ? columns_->Columns() : kNone;
}

void Recordset::RequireOpen() const {
  if (!open_) RaiseAdoError(adErrObjectClosed, kObject);
}

int32_t Recordset::RecordCount() const {
  RequireOpen();
  return static_cast<int32_t>(rows_.size());
}

bool Recordset::Bof() const {
  RequireOpen();
  return rows_.empty() || position_ < 0;
}

bool Recordset::Eof() const {
  RequireOpen();
  return rows_.empty() || position_ >= static_cast<int64_t>(rows_.size());
}

int32_t Recordset::AbsolutePosition() const {
  if (Bof()) return -2;
  if (Eof()) return -3;
  return static_cast<int32_t>(position_ + 1);
}

void Recordset::MoveFirst() {
  RequireOpen();
  if (EditPending()) Update();
  position_ = 0;
}

void Recordset::MoveLast() {
  RequireOpen();
  if (EditPending()) Update();
  position_ = rows_.empty() ? 0 : static_cast<int64_t>(rows_.size()) - 1;
}

void Recordset::MoveNext() {
  if (Eof()) RaiseAdoError(adErrNoCurrentRecord, kObject);
  if (EditPending()) Update();
  ++position_;
}

void Recordset::MovePrevious() {
  if (Bof()) RaiseAdoError(adErrNoCurrentRecord, kObject);
  if (EditPending()) Update();
  --position_;
}

vek::Fields& Recordset::Fields() { return fields_; }

Row& Recordset::CurrentRow() {
  if (!open_ || rows_.empty() || position_ < 0 || position_ >= static_cast<int64_t>(rows_.size())) {
    RaiseAdoError(adErrNoCurrentRecord, kObject);
  }
  return rows_[static_cast<size_t>(position_)];
}

const Row& Recordset::CurrentRow() const { return const_cast<Recordset*>(this)->CurrentRow(); }

bool Recordset::Updatable() const { return open_ && lock_type_ != adLockReadOnly; }

void Recordset::SetValue(size_t index, const Variant& value) {
  if (!Updatable() || Columns()[index].base_table.empty()) {
    RaiseAdoError(adErrFeatureNotAvailable, kObject);
  }
  Row& row = CurrentRow();
  Variant converted = ConvertForField(value, Columns()[index].type);
  if (edit_mode_ == EditMode::None) {
    edit_mode_ = EditMode::Editing;
    original_ = row;
    changed_.assign(Columns().size(), false);
  }
  row[index] = std::move(converted);
  changed_[index] = true;
}

void Recordset::AddNew() {
  if (!Updatable()) RaiseAdoError(adErrFeatureNotAvailable, kObject);
  if (EditPending()) Update();
  rows_.emplace_back(Columns().size(), Variant::Null());
  position_ = static_cast<int64_t>(rows_.size()) - 1;
  edit_mode_ = EditMode::Adding;
  original_.clear();
  changed_.assign(Columns().size(), false);
}

void Recordset::CancelUpdate() {
  if (edit_mode_ == EditMode::Adding) {
    rows_.pop_back();
    position_ = static_cast<int64_t>(rows_.size());
  } else if (edit_mode_ == EditMode::Editing) {
    CurrentRow() = original_;
  }
  edit_mode_ = EditMode::None;
}

void Recordset::Update() {
  RequireOpen();
  if (!Updatable()) RaiseAdoError(adErrFeatureNotAvailable, kObject);
  if (!connection_ || connection_->State() != adStateOpen) RaiseAdoError(adErrObjectClosed, kObject);
  if (edit_mode_ == EditMode::Adding) {
    WriteNewRow();
  } else if (edit_mode_ == EditMode::Editing) {
    WriteChangedRow();
  }
  edit_mode_ = EditMode::None;
}

void Recordset::WriteNewRow() {
  // One INSERT per base table touched (in practice one), with the fields that
  // were set; the identity, if any, comes back into its field.
  std::map<std::pair<std::string, std::string>, RowWrite> writes;
  Row& row = CurrentRow();
  for (size_t i = 0; i < Columns().size(); ++i) {
    const ColumnInfo& column = Columns()[i];
    if (column.base_table.empty()) continue;
    RowWrite& write = writes[{column.base_database, column.base_table}];
    write.database = column.base_database;
    write.table = column.base_table;
    if (column.is_autoincrement) write.identity_column = column.base_column;
    if (changed_[i]) {
      write.columns.push_back(column.base_column);
      write.values.push_back(row[i]);
    }
  }
  for (auto& [table, write] : writes) {
    if (write.columns.empty() && write.identity_column.empty()) continue;
    const std::optional<int64_t> identity = connection_->InsertRow(write);
    if (!identity) continue;
    for (size_t i = 0; i < Columns().size(); ++i) {
      if (Columns()[i].is_autoincrement && Columns()[i].base_table == write.table &&
          Columns()[i].base_database == write.database) {
        row[i] = Variant(*identity);
      }
    }
  }
}

void Recordset::WriteChangedRow() {
  std::map<std::pair<std::string, std::string>, RowWrite> writes;
  const Row& row = CurrentRow();
  for (size_t i = 0; i < Columns().size(); ++i) {
    const ColumnInfo& column = Columns()[i];
    if (column.base_table.empty()) continue;
    const std::pair<std::string, std::string> table{column.base_database, column.base_table};
    if (changed_[i]) {
      RowWrite& write = writes[table];
      write.columns.push_back(column.base_column);
      write.values.push_back(row[i]);
    }
  }
  for (auto& [table, write] : writes) {
    write.database = table.first;
    write.table = table.second;
    for (size_t i = 0; i < Columns().size(); ++i) {
      const ColumnInfo& column = Columns()[i];
      if (column.is_key && column.base_database == table.first && column.base_table == table.second) {
        write.key_columns.push_back(column.base_column);
        write.key_values.push_back(original_[i]);
      }
    }
    connection_->UpdateRow(write);
  }
}

}  // namespace vek

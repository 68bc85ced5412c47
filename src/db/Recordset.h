#pragma once
// A record set with the members and semantics of the classic data-access
// Recordset. Rows are read whole when it opens (so RecordCount is always
// known, and a record set detached from its connection stays readable).
// An updatable record set writes changes back with parameterized INSERT and
// UPDATE statements on its base table, keyed by the row's original key; an
// identity column comes back into its field after Update.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vek/db/Driver.h"
#include "vek/db/Enums.h"
#include "vek/db/Field.h"

namespace vek {

class Connection;

class Recordset {
 public:
  Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Opens `source` (SQL text, or a table's name with the option adCmdTable
  // or adCmdTableDirect) on `connection`; unspecified cursor and lock types
  // keep the values set before (forward-only and read-only by default).
  // Raises 3705 when already open.
  void Open(const std::string& source, std::shared_ptr<Connection> connection,
            CursorTypeEnum cursor_type = adOpenUnspecified,
            LockTypeEnum lock_type = adLockUnspecified, int32_t options = adCmdUnspecified);
  // Opens with the Source and ActiveConnection set before.
  void Open();
  // Closes; closing a closed record set raises 3704, as the classic one did.
  void Close();
  int32_t State() const { return open_ ? adStateOpen : adStateClosed; }

  const std::shared_ptr<Connection>& ActiveConnection() const { return connection_; }
  // Setting no connection detaches an open record set: its rows stay readable.
  void ActiveConnection(std::shared_ptr<Connection> connection);
  const std::string& Source() const { return source_; }
  void Source(std::string source) { source_ = std::move(source); }
  CursorTypeEnum CursorType() const { return cursor_type_; }
  void CursorType(CursorTypeEnum type) { cursor_type_ = type; }
  LockTypeEnum LockType() const { return lock_type_; }
  void LockType(LockTypeEnum type) { lock_type_ = type; }
  CursorLocationEnum CursorLocation() const { return cursor_location_; }
  void CursorLocation(CursorLocationEnum location) { cursor_location_ = location; }

  int32_t RecordCount() const;
  // Both are true when the record set is empty.
  bool Bof() const;
  bool Eof() const;
  // 1-based position of the current row; -1 at BOF, -3 at EOF (as adPosBOF/EOF).
  int32_t AbsolutePosition() const;

  // A pending change is written (Update) before moving, as the classic one did.
  void MoveFirst();
  void MoveLast();
  void MoveNext();      // 3021 at EOF
  void MovePrevious();  // 3021 at BOF

  vek::Fields& Fields();

  // Appends an empty row and makes it current; Update inserts it.
  void AddNew();
  // Writes the pending new row or the changed fields of the current row.
  void Update();
  void CancelUpdate();
  bool EditPending() const { return edit_mode_ != EditMode::None; }

  // Fills an open record set from a result; used by Connection and Command.
  void Attach(QueryResult result, std::shared_ptr<Connection> connection);

 private:
  friend class Field;
  enum class EditMode { None, Editing, Adding };

  void RequireOpen() const;
  Row& CurrentRow();
  const Row& CurrentRow() const;
  void SetValue(size_t index, const Variant& value);
  bool Updatable() const;
  void WriteNewRow();
  void WriteChangedRow();

  std::shared_ptr<Connection> connection_;
  std::string source_;
  bool table_ = false;  // source_ names a table (adCmdTable)
  CursorTypeEnum cursor_type_ = adOpenForwardOnly;
  LockTypeEnum lock_type_ = adLockReadOnly;
  CursorLocationEnum cursor_location_ = adUseServer;
  bool open_ = false;

  const std::vector<ColumnInfo>& Columns() const;
  std::shared_ptr<const ColumnSet> columns_;
  std::vector<Row> rows_;
  int64_t position_ = 0;  // -1 before the first row, rows_.size() after the last
  vek::Fields fields_;

  EditMode edit_mode_ = EditMode::None;
  Row original_;                  // the current row as read, while editing
  std::vector<bool> changed_;     // fields set since the edit began
};

}  // namespace vek

#pragma once
// What every data manager and collection shares: the session it works in,
// the statement being built, record sets opened the session's way, the guard
// on values put between quotes, and the error trap of its members.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/cgpSistema.h"

namespace vek {

class ComboBox;
class Connection;
class FlexGrid;
class Recordset;
class SqlLines;
class TextControl;

class DataManager {
 public:
  virtual ~DataManager() = default;

  // The session; reading it when none was given is error 91.
  std::shared_ptr<cgpSistema> Ob_cgpSistema() const;
  void Ob_cgpSistema(std::shared_ptr<cgpSistema> session) { session_ = std::move(session); }

  // The last statement built.
  const std::string& Ds_Sql() const { return ds_sql_; }

 protected:
  // The session's open connection.
  std::shared_ptr<Connection> SessionConnection() const;
  // Opens another connection in the session's name (an export's file): it
  // reads the session's clock, and its statements go to the statement hook
  // of the session's connection, so a program sees them in the order run.
  // Raises the provider's error when it can't be opened.
  std::shared_ptr<Connection> OpenSideConnection(const std::string& connection_string) const;
  // Opens `ds_sql_` with the session's cursor and lock types.
  std::shared_ptr<Recordset> OpenStatement();
  // The same into a record set of the caller's (a look-up's, read and
  // dropped within the member).
  void OpenStatement(Recordset& recordset);
  // Runs `ds_sql_` for its effect; returns the rows affected.
  int32_t ExecuteStatement();
  // Opens `ds_sql_` the way report record sets are returned: client-side,
  // static and read-only, detached from the connection (the caller owns it).
  std::shared_ptr<Recordset> OpenReport();

  // Runs a member's body in the trap that adds " -> Class.Member, ".
  template <class Body>
  decltype(auto) Run(std::string_view member, Body&& body) {
    return Trap([this] { return RuntimeTypeName(*this); }, member, std::forward<Body>(body));
  }

  // Refuses, before any SQL is sent, a value that would be put between
  // quotes while holding an apostrophe, a NUL or bytes that are not UTF-8
  // (error 0x80040458 naming the field).
  void RequireNoApostrophe(std::string_view field, std::string_view value) const;

  // How a pick list is filled from ds_sql_ (see FillComboBox).
  struct ComboList {
    std::string_view caption;      // the progress window's caption
    std::string_view text_column;  // each entry's text
    std::string_view code_column;  // each entry's item data
    bool choose_entry = true;      // "--ESCOLHA-->" first when more than one row
    bool progress = true;          // show the progress window while loading
    // When not empty, a list without rows gets the single entry "NENHUM"
    // (item data 0) and this text is shown in the session's message box.
    std::string_view empty_message = {};
  };
  // Clears `combo`, shows the session's progress window under the caption,
  // opens ds_sql_ the session's way and adds one entry per row: the text of
  // the text column with the number of the code column as its item data.
  // The window advances per row and is closed at the end, on failure too.
  // Raises the database's error as it came (the caller's trap adds its link).
  void FillComboBox(ComboBox& combo, const ComboList& list);

  // A column of a search grid's lines, with the Format pattern of its cells
  // (empty: the runtime's CStr, see CellText).
  struct GridColumn {
    std::string_view name;
    std::string_view format = {};
  };
  // Opens ds_sql_ the session's way and adds one grid line per row: the
  // columns given (every column of the select list when none is given), in
  // that order and tab-separated, each after a tab of its own when
  // `leading_tab` (the grid's fixed first cell then stays empty). The grid is
  // neither cleared nor laid out; `count`, when given, gets the number of
  // rows as RecordCountText shows it.
  void FillSearchGrid(FlexGrid& grid, TextControl* count, const std::vector<GridColumn>& columns = {},
                      bool leading_tab = true);
  void FillSearchGrid(FlexGrid& grid, TextControl& count, const std::vector<GridColumn>& columns = {},
                      bool leading_tab = true) {
    FillSearchGrid(grid, &count, columns, leading_tab);
  }

  // True when the first 26 characters of the filter, upper-cased, are
  // "TBCEP_TBLOGRADOURO.CD_EP =": a shorter filter, or the clause anywhere
  // but at the start, is not a postcode filter.
  static bool IsPostcodeFilter(std::string_view Ds_Condicao);
  // Adds `keyword` + the filter as it stands, when there is one (the loaders
  // write "WHERE " or "WHERE  ").
  static void AddFilter(SqlLines& sql, std::string_view Ds_Condicao, std::string_view keyword = "WHERE ");

  std::string ds_sql_;

 private:
  std::shared_ptr<cgpSistema> session_;
};

// Builds a statement clause by clause: each clause is followed by a single
// carriage return, as every statement of the system is.
class SqlLines {
 public:
  SqlLines& operator<<(std::string_view clause) {
    text_.append(clause).push_back('\r');
    return *this;
  }
  const std::string& Text() const { return text_; }
  operator const std::string&() const { return text_; }

 private:
  std::string text_;
};

}  // namespace vek

#pragma once
// The persistence protocol that every record's data manager follows: the
// eleven members (Ob_cgp, Ob_cgpSistema, Excluir, Consultar, Salvar,
// Alterar, Incluir, temCampoSequencial, nomeCamposSequencial). A record's
// class gives its table and key columns and overrides only the statements
// that differ from the standard ones:
//
//   DELETE  / FROM   Tb / WHERE  k1 = v1 / "       And k2 = v2"
//   SELECT A.* / FROM   Tb A / WHERE  A.k1 = v1 / "       and A.k2 = v2" / ;
//
// each clause followed by a single carriage return; text keys between
// single quotes as they stand (refused when they hold an apostrophe), date
// keys between single quotes in the session's date format.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vek/foundation/DataManager.h"
#include "vek/foundation/cgp.h"
#include "vek/schema/Catalogue.h"

namespace vek {
class Recordset;
}

namespace vek {

class RecordManager : public DataManager {
 public:
  // Deletes the record of the key; a key of 0 resets Ob_cgp and raises
  // 0x80040201; no row is no error.
  void Excluir();
  // Saves: an update when the row is there, else an insert (a key of 0 is
  // always an insert, under a fresh number for numbered columns).
  void Salvar();
  // Updates the row of the key (0x80040201 for key 0, 0x80040202 when it is
  // not there); numbered columns keep their stored values.
  void Alterar(bool Ic_Salvando = false);
  // Inserts the record; numbered columns left at 0 get a fresh number, which
  // is in Ob_cgp afterwards.
  void Incluir();

  // The columns whose values come from the database or the numbering table.
  virtual bool temCampoSequencial() const;
  virtual std::vector<std::string> nomeCamposSequencial() const;

  // The property object as the protocol sees it.
  virtual cgp& RecordObject() = 0;

 protected:
  // `key_columns` in the order the statements write them (the table's
  // primary key when empty).
  explicit RecordManager(std::string_view table, std::vector<std::string_view> key_columns = {});

  // Loads the record of the key into the property object (the shared part
  // of Consultar).
  void ConsultarRegistro(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro);
  // Opens ds_sql_ and loads its first row into the property object; with no
  // row, resets it (restore) or raises 0x80040202 in the name of `member`.
  // Returns whether a row came back.
  bool LoadFirstRow(bool restore, std::string_view member);
  // Opens ds_sql_ and tells whether it returns a row, loading nothing.
  bool StatementHasRows();
  // Opens ds_sql_ and returns the first column of its first row; Empty when
  // no row comes back.
  Variant FirstValue();

  // True when the key is not given: a numeric key column 0 or a text one empty.
  virtual bool KeyMissing();
  // True when Consultar and Alterar have nothing to look the row up by (the
  // key, unless the record has other look-ups).
  virtual bool LookupKeyMissing() { return KeyMissing(); }
  // True when Alterar has nothing to find the row by; Salvar then inserts.
  virtual bool UpdateKeyMissing() { return LookupKeyMissing(); }
  virtual std::string DeleteStatement();
  // The statement of Alterar, and of Consultar unless it reads more.
  virtual std::string SelectStatement();
  // The statement of Consultar.
  virtual std::string ConsultarStatement() { return SelectStatement(); }
  // The statement of Incluir: the table's columns and no row.
  virtual std::string EmptySelectStatement();
  // A record that writes its own INSERT returns it here (Incluir then runs
  // it instead of adding a row to the empty record set); empty otherwise.
  virtual std::string InsertStatement() { return {}; }
  // A record that writes its own UPDATE returns it here: Alterar runs it
  // instead of copying into the stored row, and a statement that updates no
  // row is 0x80040202, so Salvar still inserts a record that is not there.
  virtual std::string UpdateStatement() { return {}; }
  // A record whose detail rows go with it returns their DELETE here:
  // Excluir runs it first, then the record's own.
  virtual std::string DetailDeleteStatement() { return {}; }
  // What Alterar stores differently from the generic copy, applied to the
  // row after the copy and before it is written.
  virtual void AdjustUpdatedRow(Recordset& /*row*/) {}

  // "SELECT A.*" / "FROM   Tb A" / "WHERE  A.k1 = v1" / "       And A.k2 = v2"
  // and, when `semicolon`, ";": the key look-up as most records of the car
  // park write it; with zero_keys, every key 0 (the empty row set of Incluir).
  std::string SelectByKey(bool semicolon, bool zero_keys = false);
  // "INSERT INTO Tb (" / "   c1," ... "   cn" / "   )" / "Values (" / one
  // value a line, each but the last followed by ",", the last by ")".
  std::string InsertLines(const std::vector<std::string>& columns, const std::vector<std::string>& values) const;
  // A column's value in Ob_cgp as the SQL literal of its type: whole numbers
  // and bits in decimal, money with two decimals, texts between quotes (cut
  // to the column's size; refused, as keys are, when they hold an apostrophe,
  // a NUL or bytes that are not UTF-8), dates with their time in the
  // session's format.
  std::string ValueLiteral(std::string_view column);

  // Runs one of the database procedures that push records into the
  // access-control database: the company and the key column of Ob_cgp go in
  // as "@Cd_EmpresaUsuariaSistema" and "@" + key_column; "@No_Retorno",
  // "@Ds_Erro" (300) and "@Ds_Aviso" (5000) come out. Ds_Aviso gets the
  // warning; a return other than 0 raises 0x80040458 with "@Ds_Erro".
  void RunAccessControlProcedure(std::string_view procedure, std::string_view key_column, std::string& Ds_Aviso);

  // A key value as the statements write it: digits, text between quotes
  // (refused when it holds an apostrophe), or a date column's day between
  // quotes in the session's date format ("'2026-11-21'").
  std::string KeyLiteral(std::string_view column);
  std::string KeyLiteral(std::string_view column, bool text);
  std::string DateKeyLiteral(std::string_view column);
  // The WHERE lines of the key, each ended by a carriage return: for the
  // DELETE ("WHERE  k = v", "       And k = v") or the SELECT
  // ("WHERE  A.k = v", "       and A.k = v"); zero_keys writes 0 and ''.
  std::string KeyClauses(bool for_delete, bool zero_keys);

  const schema::TableDef& Table() const { return *table_; }

  // Marks a text column that some look-up writes between quotes (a login
  // name, a name looked up by): like the text key columns, Incluir and
  // Alterar refuse a value of it that holds an apostrophe, so nothing is
  // stored that could never be found again.
  void QuotedInLookups(std::string_view column) { quoted_columns_.emplace_back(column); }

 private:
  // Refuses (0x80040458 naming the field) a value that a statement would put
  // between quotes while it holds an apostrophe.
  void RequireQuotableValues();

  void NumberNewRecord();
  struct KeyColumn;
  std::string DateKeyLiteral(const KeyColumn& key, bool zero_key);
  void AppendKeyClauses(std::string& text, bool for_delete, bool zero_keys);

  struct KeyColumn {
    std::string name;
    bool text = false;
    bool date = false;  // written as the session's date literal; Date() stands for 0
    std::string delete_head;  // "WHERE  Cd_X = " or "       And Cd_X = "
    std::string select_head;  // "WHERE  A.Cd_X = " or "       and A.Cd_X = "
  };

  const schema::TableDef* table_;
  std::vector<KeyColumn> keys_;
  std::vector<std::string> quoted_columns_;  // text keys and QuotedInLookups
  std::string delete_start_;  // "DELETE " / "FROM   Tb"
  std::string select_start_;  // "SELECT A.*" / "FROM   Tb A"
};

// The typed face of the protocol for a record's property class.
template <class Cgp>
class cgdRecord : public RecordManager {
 public:
  std::shared_ptr<Cgp> Ob_cgp() {
    if (!record_) record_ = std::make_shared<Cgp>();
    return record_;
  }
  void Ob_cgp(std::shared_ptr<Cgp> record) { record_ = std::move(record); }

  // Loads the record of the key; a row that is not there resets Ob_cgp to
  // its defaults, or raises 0x80040202 when Ic_RestaurarDefaulSeNaoEcontrarRegistro is false.
  virtual std::shared_ptr<Cgp> Consultar(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro = true) {
    return Run("Consultar", [&] {
      ConsultarRegistro(Ic_RestaurarDefaulSeNaoEcontrarRegistro);
      return Ob_cgp();
    });
  }

  cgp& RecordObject() override {
    if (!record_) record_ = std::make_shared<Cgp>();
    return *record_;
  }

 protected:
  using RecordManager::RecordManager;

 private:
  std::shared_ptr<Cgp> record_;
};

// A record found by a text column when its numeric key is 0 (street types and
// titles by name, makes and models by description): Consultar looks it up by
// the key when it is given, else by the text, written between quotes as it
// stands (refused when it holds an apostrophe); with neither it raises
// 0x80040201. Alterar and Excluir need the key, so that Salvar of a record
// whose key is 0 always inserts, even under a text already there. The text
// is refused with an apostrophe on every write too: a row stored so could
// never be found by it.
template <class Cgp>
class cgdRecordFoundByText : public cgdRecord<Cgp> {
 protected:
  // `text_lookup_head` is the look-up's first two lines ("SELECT A.*" and
  // "FROM   Tb A", each with its carriage return); `text_lookup_tail` what
  // follows its WHERE line.
  cgdRecordFoundByText(std::string_view table, std::string_view text_column, std::string text_lookup_head,
                       std::string text_lookup_tail)
      : cgdRecord<Cgp>(table),
        text_column_(text_column),
        text_lookup_head_(std::move(text_lookup_head)),
        text_lookup_tail_(std::move(text_lookup_tail)) {
    this->QuotedInLookups(text_column);
  }

  bool LookupKeyMissing() override { return this->KeyMissing() && Text().empty(); }
  bool UpdateKeyMissing() override { return this->KeyMissing(); }

  std::string ConsultarStatement() override {
    if (!this->KeyMissing()) return this->SelectStatement();
    const std::string text = Text();
    this->RequireNoApostrophe(text_column_, text);
    return text_lookup_head_ + "WHERE  A." + text_column_ + " = '" + text + "'\r" + text_lookup_tail_;
  }

 private:
  std::string Text() { return CStr(this->Ob_cgp()->Get(text_column_)); }

  std::string text_column_;
  std::string text_lookup_head_;
  std::string text_lookup_tail_;
};

}  // namespace vek

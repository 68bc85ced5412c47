#pragma once
// The automatic backup of the terminal's database. Called again and again
// (at start-up, on a timer, by `vek backup`), it decides itself what to do:
// a full backup when "VekBkp.bak" is missing or, once a day, between 00:00
// and 04:59; a differential backup at every other call; and, by the same
// rule, a zipped copy of the backup file in the mirror folder. Every step
// goes to "Backup.log" in the application folder, one line
// "dd/mm/yyyy hh:mm:ss - text" per step, and the session's progress window
// shows the work. The times of the last full backup and mirror copy live in
// the settings store (application "VEK", section "Backup").
//
// Only the day of the month of the last full backup is compared with
// today's, not the whole date: a full backup made on 5 March counts as made
// today on 5 April.
//
// Files in Ds_PathBkpLocal: "VekBkp.bak" (the full set and the differential
// sets after it), "VekBkp_Old.bak" (the previous generation), "VekBkp.zip"
// (the copy for the mirror folder Ds_PathBkpEspelho). A session without a
// mirror folder keeps the local files only.

#include "vek/foundation/DataManager.h"

namespace vek {

class cgdManutencaoBD : public DataManager {
 public:
  // Runs the whole procedure. Raises 0x80040458 "Não foi configurado o
  // diretório de backup" when Ds_PathBkpLocal is empty (nothing is written
  // but the first log line), 0x80040458 "Erro na criAção do diretório de
  // backup " when a folder can't be made, the database's error when the
  // backup statement fails and ZqModulo's when the zip does; a failed step
  // stops the procedure, and a stored time is written only after its step
  // has succeeded. The progress window is closed in every case.
  void Backup();

 private:
  void Log(const std::string& text) const;
  bool DueAtDawn(const char* setting) const;
  void Stamp(const char* setting) const;
  void CreateFolder(const std::string& folder, const std::string& log_text) const;
  void FullBackup(const std::string& bak_file);
  void DifferentialBackup(const std::string& bak_file);
  void MirrorCopy(const std::string& bak_file, const std::string& zip_file, const std::string& mirror);
};

}  // namespace vek

#include "vek/db/workbook/WorkbookFile.h"
#include "vek/platform/FileModes.h"

#include <zip.h>

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <system_error>

#include "vek/db/DbError.h"
#include "vek/platform/Text.h"

namespace vek::workbook {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kRelationshipOfficeDocument =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
// The format the provider gives a date cell whose own style shows no date.
constexpr std::string_view kDateFormat = "dd/mm/yyyy";

[[noreturn]] void RaiseFileError(const fs::path& path, const std::string& what) {
  RaiseDbError(adErrUnspecified, kWorkbookSource, "The workbook " + path.string() + " " + what);
}

struct ZipCloser {
  void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

// Larger parts are refused: a terminal's workbook parts are a few megabytes,
// and a damaged header may announce gigabytes.
constexpr zip_uint64_t kLargestPart = zip_uint64_t{256} << 20;

[[noreturn]] void RaiseDamagedPart(const fs::path& path, const std::string& name) {
  RaiseFileError(path, "is damaged: the part " + name + " cannot be read");
}

// A part's bytes, or nothing when the package has no such part. The bytes
// are read as they come, never into a buffer sized by the part's header.
std::optional<std::string> ReadEntry(zip_t* archive, const std::string& name, const fs::path& path) {
  zip_stat_t stat;
  zip_stat_init(&stat);
  if (zip_stat(archive, name.c_str(), 0, &stat) != 0) return std::nullopt;
  if ((stat.valid & ZIP_STAT_SIZE) != 0 && stat.size > kLargestPart) RaiseDamagedPart(path, name);
  zip_file_t* file = zip_fopen(archive, name.c_str(), 0);
  if (file == nullptr) RaiseDamagedPart(path, name);
  std::string data;
  char chunk[1 << 16];
  zip_int64_t read = 0;
  while ((read = zip_fread(file, chunk, sizeof chunk)) > 0 && data.size() + static_cast<size_t>(read) <= kLargestPart) {
    data.append(chunk, static_cast<size_t>(read));
  }
  zip_fclose(file);
  if (read != 0) RaiseDamagedPart(path, name);  // a read error, a wrong checksum or too many bytes
  return data;
}

// A part's path from a relationship target, relative to the part's folder.
std::string ResolveTarget(std::string_view folder, std::string_view target) {
  if (!target.empty() && target.front() == '/') return std::string(target.substr(1));
  std::vector<std::string> segments;
  auto push_path = [&](std::string_view path) {
    size_t start = 0;
    while (start <= path.size()) {
      size_t end = path.find('/', start);
      if (end == std::string_view::npos) end = path.size();
      const std::string_view segment = path.substr(start, end - start);
      if (segment == "..") {
        if (!segments.empty()) segments.pop_back();
      } else if (!segment.empty() && segment != ".") {
        segments.emplace_back(segment);
      }
      start = end + 1;
    }
  };
  push_path(folder);
  push_path(target);
  std::string joined;
  for (const std::string& segment : segments) joined += (joined.empty() ? "" : "/") + segment;
  return joined;
}

std::string FolderOf(std::string_view part) {
  const size_t slash = part.rfind('/');
  return slash == std::string_view::npos ? std::string() : std::string(part.substr(0, slash));
}

std::string RelationshipsOf(std::string_view part) {
  const size_t slash = part.rfind('/');
  const std::string folder = slash == std::string_view::npos ? std::string() : std::string(part.substr(0, slash + 1));
  const std::string name(slash == std::string_view::npos ? part : part.substr(slash + 1));
  return folder + "_rels/" + name + ".rels";
}

// A part that parses as XML, or the file's error.
void ParsePart(pugi::xml_document& doc, const std::string& data, const fs::path& path, const std::string& part) {
  const pugi::xml_parse_result parsed = doc.load_buffer(data.data(), data.size(), pugi::parse_default | pugi::parse_ws_pcdata_single, pugi::encoding_utf8);
  if (!parsed) RaiseFileError(path, "is damaged: its part " + part + " is not XML (" + parsed.description() + ")");
}

// The text of a shared string or inline string: its <t>, or the runs' <t>s.
std::string StringItemText(pugi::xml_node item) {
  if (pugi::xml_node t = item.child("t")) return t.text().get();
  std::string text;
  for (pugi::xml_node run : item.children("r")) text += run.child("t").text().get();
  return text;
}

// Built-in number formats that show dates or times.
bool IsBuiltInDateFormat(uint32_t id) {
  return (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47) || (id >= 50 && id <= 58);
}

// A format code shows a date when, outside quoted text and [..] sections,
// it holds d, m, y or h.
bool IsDateFormatCode(std::string_view code) {
  bool quoted = false;
  bool bracket = false;
  for (size_t i = 0; i < code.size(); ++i) {
    const char c = code[i];
    if (c == '\\' && !quoted) {
      ++i;
      continue;
    }
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == '[') bracket = true;
    if (c == ']') bracket = false;
    if (bracket) continue;
    const char lower = static_cast<char>(c | 0x20);
    if (lower == 'd' || lower == 'm' || lower == 'y' || lower == 'h') return true;
  }
  return false;
}

std::string NumberText(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

void SetCount(pugi::xml_node list) {
  int32_t count = 0;
  for (pugi::xml_node child = list.first_child(); child; child = child.next_sibling()) {
    if (child.type() == pugi::node_element) ++count;
  }
  if (pugi::xml_attribute attribute = list.attribute("count")) attribute.set_value(count);
}

// Inserts `name` as a child of `parent` after the last child whose name is
// one of `before` (the schema's order), else first.
pugi::xml_node InsertInOrder(pugi::xml_node parent, const char* name, std::initializer_list<const char*> before) {
  pugi::xml_node after;
  for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
    for (const char* earlier : before) {
      if (std::string_view(child.name()) == earlier) after = child;
    }
  }
  return after ? parent.insert_child_after(name, after) : parent.prepend_child(name);
}

struct StringWriter : pugi::xml_writer {
  std::string text;
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
};

std::string Serialize(const pugi::xml_document& doc) {
  StringWriter writer;
  doc.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
  return std::move(writer.text);
}

// Removes the cached results of a sheet's formulas; true when there were any.
bool DropCachedResults(pugi::xml_node sheet_data) {
  bool dropped = false;
  for (pugi::xml_node row : sheet_data.children("row")) {
    for (pugi::xml_node cell : row.children("c")) {
      if (!cell.child("f")) continue;
      if (pugi::xml_node value = cell.child("v")) {
        cell.remove_child(value);
        dropped = true;
      }
      cell.remove_attribute("t");
    }
  }
  return dropped;
}

}  // namespace

// ---- the package --------------------------------------------------------

struct WorkbookFile::Parts {
  ZipHandle archive;
  std::string workbook_part;
  pugi::xml_document workbook;
  std::vector<std::pair<std::string, std::string>> sheets;  // name -> part
  std::vector<std::string> shared_strings;
  std::string styles_part;
  pugi::xml_document styles;
  bool styles_changed = false;
  std::map<uint32_t, std::string> number_formats;  // custom ones: id -> code
  std::vector<uint32_t> cell_format_ids;            // cellXfs: style -> numFmtId
  std::optional<uint32_t> date_style;
};

struct Sheet::Impl {
  pugi::xml_document doc;
  pugi::xml_node sheet_data;
  std::map<int32_t, pugi::xml_node> rows;
  bool changed = false;
};

WorkbookFile::WorkbookFile(fs::path path) : path_(std::move(path)), parts_(std::make_unique<Parts>()) {
  std::error_code error;
  if (!fs::is_regular_file(path_, error)) RaiseFileError(path_, "does not exist");
  int zip_error = 0;
  parts_->archive.reset(zip_open(path_.c_str(), ZIP_RDONLY, &zip_error));
  if (!parts_->archive) RaiseFileError(path_, "could not be read as an Office Open XML workbook (.xlsx)");
  zip_t* archive = parts_->archive.get();

  // The package's relationships name the workbook part.
  parts_->workbook_part = "xl/workbook.xml";
  if (std::optional<std::string> rels = ReadEntry(archive, "_rels/.rels", path_)) {
    pugi::xml_document doc;
    ParsePart(doc, *rels, path_, "_rels/.rels");
    for (pugi::xml_node rel : doc.child("Relationships").children("Relationship")) {
      if (std::string_view(rel.attribute("Type").value()) == kRelationshipOfficeDocument) {
        parts_->workbook_part = ResolveTarget("", rel.attribute("Target").value());
      }
    }
  }
  std::optional<std::string> workbook = ReadEntry(archive, parts_->workbook_part, path_);
  if (!workbook) RaiseFileError(path_, "is not an Office Open XML workbook (.xlsx): it has no workbook part");
  ParsePart(parts_->workbook, *workbook, path_, parts_->workbook_part);

  // The workbook's relationships: its sheets, shared strings and styles.
  const std::string folder = FolderOf(parts_->workbook_part);
  std::map<std::string, std::string> targets;
  if (std::optional<std::string> rels = ReadEntry(archive, RelationshipsOf(parts_->workbook_part), path_)) {
    pugi::xml_document doc;
    ParsePart(doc, *rels, path_, RelationshipsOf(parts_->workbook_part));
    for (pugi::xml_node rel : doc.child("Relationships").children("Relationship")) {
      const std::string target = ResolveTarget(folder, rel.attribute("Target").value());
      targets[rel.attribute("Id").value()] = target;
      const std::string_view type = rel.attribute("Type").value();
      if (type.ends_with("/sharedStrings")) {
        if (std::optional<std::string> data = ReadEntry(archive, target, path_)) {
          pugi::xml_document strings;
          ParsePart(strings, *data, path_, target);
          for (pugi::xml_node item : strings.child("sst").children("si")) {
            parts_->shared_strings.push_back(StringItemText(item));
          }
        }
      } else if (type.ends_with("/styles")) {
        parts_->styles_part = target;
      }
    }
  }
  for (pugi::xml_node sheet : parts_->workbook.child("workbook").child("sheets").children("sheet")) {
    const auto target = targets.find(sheet.attribute("r:id").value());
    if (target != targets.end()) parts_->sheets.emplace_back(sheet.attribute("name").value(), target->second);
  }

  if (!parts_->styles_part.empty()) {
    if (std::optional<std::string> data = ReadEntry(archive, parts_->styles_part, path_)) {
      ParsePart(parts_->styles, *data, path_, parts_->styles_part);
      pugi::xml_node sheet = parts_->styles.child("styleSheet");
      for (pugi::xml_node format : sheet.child("numFmts").children("numFmt")) {
        parts_->number_formats[format.attribute("numFmtId").as_uint()] = format.attribute("formatCode").value();
      }
      for (pugi::xml_node xf : sheet.child("cellXfs").children("xf")) {
        parts_->cell_format_ids.push_back(xf.attribute("numFmtId").as_uint());
      }
    }
  }
}

WorkbookFile::~WorkbookFile() = default;

std::vector<std::string> WorkbookFile::SheetNames() const {
  std::vector<std::string> names;
  for (const auto& [name, part] : parts_->sheets) names.push_back(name);
  return names;
}

bool WorkbookFile::HasSheet(std::string_view name) const {
  return std::any_of(parts_->sheets.begin(), parts_->sheets.end(),
                     [&](const auto& sheet) { return EqualsIgnoreCase(sheet.first, name); });
}

Sheet& WorkbookFile::Worksheet(std::string_view name) {
  const std::string key = FoldCase(name);
  if (auto hit = sheets_.find(key); hit != sheets_.end()) return *hit->second;
  const auto sheet = std::find_if(parts_->sheets.begin(), parts_->sheets.end(),
                                  [&](const auto& entry) { return EqualsIgnoreCase(entry.first, name); });
  if (sheet == parts_->sheets.end()) {
    RaiseDbError(kNoSuchSheet, kWorkbookSource,
                 "The workbook " + path_.string() + " has no sheet " + std::string(name) + ".");
  }
  std::optional<std::string> data = ReadEntry(parts_->archive.get(), sheet->second, path_);
  if (!data) RaiseFileError(path_, "is damaged: the part " + sheet->second + " of sheet " + sheet->first + " is missing");
  std::unique_ptr<Sheet> loaded(new Sheet(*this, sheet->first, sheet->second));
  Sheet::Impl& impl = *loaded->impl_;
  ParsePart(impl.doc, *data, path_, sheet->second);
  impl.sheet_data = impl.doc.child("worksheet").child("sheetData");
  if (!impl.sheet_data) {
    impl.sheet_data = InsertInOrder(impl.doc.child("worksheet"), "sheetData",
                                    {"sheetPr", "dimension", "sheetViews", "sheetFormatPr", "cols"});
  }
  int32_t previous = 0;
  for (pugi::xml_node row : impl.sheet_data.children("row")) {
    // A row without its number follows the one before it.
    const int32_t number = row.attribute("r") ? row.attribute("r").as_int() : previous + 1;
    impl.rows[number] = row;
    previous = number;
  }
  if (formulas_uncached_) {
    // Saved before without its cached results: it stays so.
    const auto written = std::find_if(uncached_.begin(), uncached_.end(),
                                      [&](const auto& entry) { return entry.first == sheet->second; });
    if (written != uncached_.end()) {
      DropCachedResults(impl.sheet_data);
      impl.changed = true;
      uncached_.erase(written);
    }
  }
  Sheet& result = *loaded;
  sheets_.emplace(key, std::move(loaded));
  return result;
}

void WorkbookFile::Activate(std::string_view name) {
  Worksheet(name);
  size_t index = 0;
  while (!EqualsIgnoreCase(parts_->sheets[index].first, name)) ++index;
  pugi::xml_node workbook = parts_->workbook.child("workbook");
  pugi::xml_node views = workbook.child("bookViews");
  if (!views) views = InsertInOrder(workbook, "bookViews", {"fileVersion", "fileSharing", "workbookPr", "workbookProtection"});
  pugi::xml_node view = views.child("workbookView");
  if (!view) view = views.append_child("workbookView");
  if (!view.attribute("activeTab")) view.append_attribute("activeTab");
  view.attribute("activeTab").set_value(static_cast<uint32_t>(index));
  changed_ = true;
}

bool WorkbookFile::IsDateStyle(uint32_t style) const {
  if (style >= parts_->cell_format_ids.size()) return false;
  const uint32_t id = parts_->cell_format_ids[style];
  if (const auto custom = parts_->number_formats.find(id); custom != parts_->number_formats.end()) {
    return IsDateFormatCode(custom->second);
  }
  return IsBuiltInDateFormat(id);
}

uint32_t WorkbookFile::DateStyle(uint32_t current) {
  if (IsDateStyle(current)) return current;
  if (parts_->date_style) return *parts_->date_style;
  pugi::xml_node sheet = parts_->styles.child("styleSheet");
  if (!sheet) RaiseFileError(path_, "has no styles part, so a date cell can't be given a date format");
  // The format "dd/mm/yyyy", added once.
  uint32_t format_id = 0;
  for (const auto& [id, code] : parts_->number_formats) {
    if (code == kDateFormat) format_id = id;
  }
  if (format_id == 0) {
    format_id = 164;  // the first id of a workbook's own formats
    for (const auto& [id, code] : parts_->number_formats) format_id = std::max(format_id, id + 1);
    pugi::xml_node formats = sheet.child("numFmts");
    if (!formats) {
      formats = sheet.prepend_child("numFmts");
      formats.append_attribute("count") = 0;
    }
    pugi::xml_node format = formats.append_child("numFmt");
    format.append_attribute("numFmtId") = format_id;
    format.append_attribute("formatCode") = std::string(kDateFormat).c_str();
    SetCount(formats);
    parts_->number_formats[format_id] = kDateFormat;
  }
  pugi::xml_node cell_formats = sheet.child("cellXfs");
  if (!cell_formats) RaiseFileError(path_, "has a styles part without cell formats (cellXfs)");
  pugi::xml_node xf = cell_formats.append_child("xf");
  xf.append_attribute("numFmtId") = format_id;
  xf.append_attribute("fontId") = 0;
  xf.append_attribute("fillId") = 0;
  xf.append_attribute("borderId") = 0;
  xf.append_attribute("xfId") = 0;
  xf.append_attribute("applyNumberFormat") = 1;
  SetCount(cell_formats);
  parts_->cell_format_ids.push_back(format_id);
  parts_->styles_changed = true;
  parts_->date_style = static_cast<uint32_t>(parts_->cell_format_ids.size() - 1);
  return *parts_->date_style;
}


void WorkbookFile::DropCachedFormulaResults() {
  // A spreadsheet that keeps cached results (LibreOffice does unless told
  // otherwise) would show the template's totals; without them it works
  // every formula out when it opens.
  for (const auto& [name, part] : parts_->sheets) {
    if (auto loaded = sheets_.find(FoldCase(name)); loaded != sheets_.end()) {
      if (DropCachedResults(loaded->second->impl_->sheet_data)) loaded->second->impl_->changed = true;
      continue;
    }
    std::optional<std::string> data = ReadEntry(parts_->archive.get(), part, path_);
    if (!data || data->find("<f") == std::string::npos) continue;
    pugi::xml_document doc;
    ParsePart(doc, *data, path_, part);
    if (DropCachedResults(doc.child("worksheet").child("sheetData"))) uncached_.emplace_back(part, Serialize(doc));
  }
  formulas_uncached_ = true;
}

void WorkbookFile::Save() {
  // A read-only workbook is refused before anything is written: renaming
  // over it would succeed where writing into it must not.
  std::error_code error;
  const fs::file_status status = fs::status(path_, error);
  if (error || !fs::is_regular_file(status)) RaiseFileError(path_, "does not exist any more");
  const fs::perms write = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((status.permissions() & write) == fs::perms::none) RaiseFileError(path_, "is read-only");

  // Formulas of every sheet are worked out again when the workbook opens.
  pugi::xml_node workbook = parts_->workbook.child("workbook");
  pugi::xml_node calc = workbook.child("calcPr");
  if (!calc) {
    calc = InsertInOrder(workbook, "calcPr",
                         {"fileVersion", "fileSharing", "workbookPr", "workbookProtection", "bookViews", "sheets",
                          "functionGroups", "externalReferences", "definedNames"});
  }
  if (!calc.attribute("fullCalcOnLoad")) calc.append_attribute("fullCalcOnLoad");
  calc.attribute("fullCalcOnLoad").set_value("1");

  if (!formulas_uncached_) DropCachedFormulaResults();

  std::vector<std::pair<std::string, std::string>> changed = uncached_;
  changed.emplace_back(parts_->workbook_part, Serialize(parts_->workbook));
  if (parts_->styles_changed) changed.emplace_back(parts_->styles_part, Serialize(parts_->styles));
  for (const auto& [key, sheet] : sheets_) {
    if (!sheet->impl_->changed) continue;
    // The used range grows with the cells written.
    Sheet::Impl& impl = *sheet->impl_;
    if (pugi::xml_node dimension = impl.doc.child("worksheet").child("dimension")) {
      int32_t last_column = 0;
      int32_t last_row = 0;
      for (const auto& [number, row] : impl.rows) {
        last_row = std::max(last_row, number);
        for (pugi::xml_node cell : row.children("c")) {
          int32_t r = 0;
          int32_t c = 0;
          if (Sheet::ParseReference(cell.attribute("r").value(), r, c)) last_column = std::max(last_column, c);
        }
      }
      if (last_row > 0) {
        dimension.attribute("ref").set_value(("A1:" + Sheet::ColumnLetters(last_column) + std::to_string(last_row)).c_str());
      }
    }
    changed.emplace_back(sheet->part_, Serialize(impl.doc));
  }

  // libzip writes the package to a temporary file beside it and renames it
  // over the old one; the parts not named here are copied as they are.
  int zip_error = 0;
  ZipHandle target(zip_open(path_.c_str(), 0, &zip_error));
  if (!target) RaiseFileError(path_, "could not be opened for writing");
  for (const auto& [part, data] : changed) {
    zip_source_t* source = zip_source_buffer(target.get(), data.data(), data.size(), 0);
    if (source == nullptr) RaiseFileError(path_, "could not be written: " + std::string(zip_strerror(target.get())));
    const zip_int64_t index = zip_file_add(target.get(), part.c_str(), source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8);
    if (index < 0) {
      zip_source_free(source);
      RaiseFileError(path_, "could not be written: " + std::string(zip_strerror(target.get())));
    }
    // The sheet is written again on every change: the fastest deflate.
    zip_set_file_compression(target.get(), static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 1);
  }
  if (zip_close(target.get()) != 0) {
    const std::string reason = zip_strerror(target.get());
    RaiseFileError(path_, "could not be written (" + reason + "); it was left as it was");
  }
  target.release();  // zip_close freed it
  detail::KeepOthersFromWriting(path_);
  changed_ = false;
}

// ---- a sheet ------------------------------------------------------------

Sheet::Sheet(WorkbookFile& owner, std::string name, std::string part)
    : owner_(owner), name_(std::move(name)), part_(std::move(part)), impl_(std::make_shared<Impl>()) {}

int32_t Sheet::LastRow() const { return impl_->rows.empty() ? 0 : impl_->rows.rbegin()->first; }

bool Sheet::ParseReference(std::string_view reference, int32_t& row, int32_t& column) {
  size_t i = 0;
  int32_t letters = 0;
  while (i < reference.size() && ((reference[i] >= 'A' && reference[i] <= 'Z') || (reference[i] >= 'a' && reference[i] <= 'z'))) {
    letters = letters * 26 + ((reference[i] | 0x20) - 'a' + 1);
    if (letters > 16384) return false;
    ++i;
  }
  if (i == 0 || i == reference.size()) return false;
  int32_t number = 0;
  const auto parsed = std::from_chars(reference.data() + i, reference.data() + reference.size(), number);
  if (parsed.ec != std::errc() || parsed.ptr != reference.data() + reference.size() || number < 1) return false;
  row = number;
  column = letters - 1;
  return true;
}

std::string Sheet::ColumnLetters(int32_t column) {
  std::string letters;
  for (int32_t n = column + 1; n > 0; n = (n - 1) / 26) letters.insert(letters.begin(), static_cast<char>('A' + (n - 1) % 26));
  return letters;
}

namespace {

// The cell at a column of a row element, or an empty node.
pugi::xml_node FindCell(pugi::xml_node row, int32_t column, int32_t row_number) {
  int32_t position = -1;
  for (pugi::xml_node cell : row.children("c")) {
    int32_t r = 0;
    int32_t c = 0;
    // A cell without its reference follows the one before it.
    if (Sheet::ParseReference(cell.attribute("r").value(), r, c)) {
      position = c;
    } else {
      ++position;
      cell.remove_attribute("r");
      cell.prepend_attribute("r") = (Sheet::ColumnLetters(position) + std::to_string(row_number)).c_str();
    }
    if (position == column) return cell;
  }
  return pugi::xml_node();
}

}  // namespace

Variant Sheet::Value(int32_t row, int32_t column) const {
  const auto hit = impl_->rows.find(row);
  if (hit == impl_->rows.end()) return Variant();
  pugi::xml_node cell = FindCell(hit->second, column, row);
  if (!cell) return Variant();
  const std::string_view type = cell.attribute("t").value();
  if (type == "inlineStr") return Variant(StringItemText(cell.child("is")));
  pugi::xml_node value = cell.child("v");
  if (!value) return Variant();
  const std::string text = value.text().get();
  if (type == "s") {
    const size_t index = static_cast<size_t>(value.text().as_ullong());
    return index < owner_.parts_->shared_strings.size() ? Variant(owner_.parts_->shared_strings[index]) : Variant();
  }
  if (type == "str") return Variant(text);
  if (type == "b") return Variant(text == "1");
  if (type == "e") return Variant::Null();
  if (text.empty()) return Variant();
  double number = 0.0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  if (parsed.ec != std::errc()) return Variant(text);
  if (owner_.IsDateStyle(cell.attribute("s").as_uint())) return Variant(Date(number));
  return Variant(number);
}

namespace {

pugi::xml_node RowElement(Sheet::Impl& impl, int32_t row) {
  if (auto hit = impl.rows.find(row); hit != impl.rows.end()) return hit->second;
  // A new row goes before the first row below it.
  const auto next = impl.rows.upper_bound(row);
  pugi::xml_node element = next == impl.rows.end() ? impl.sheet_data.append_child("row")
                                                    : impl.sheet_data.insert_child_before("row", next->second);
  element.append_attribute("r") = row;
  impl.rows[row] = element;
  return element;
}

// The cell, made empty of value and formula (its style kept), in column order.
pugi::xml_node ClearedCell(Sheet::Impl& impl, int32_t row, int32_t column) {
  pugi::xml_node row_element = RowElement(impl, row);
  pugi::xml_node cell = FindCell(row_element, column, row);
  if (!cell) {
    pugi::xml_node next;
    for (pugi::xml_node other : row_element.children("c")) {
      int32_t r = 0;
      int32_t c = 0;
      if (Sheet::ParseReference(other.attribute("r").value(), r, c) && c > column) {
        next = other;
        break;
      }
    }
    cell = next ? row_element.insert_child_before("c", next) : row_element.append_child("c");
    cell.append_attribute("r") = (Sheet::ColumnLetters(column) + std::to_string(row)).c_str();
  }
  cell.remove_attribute("t");
  while (pugi::xml_node child = cell.first_child()) cell.remove_child(child);
  impl.changed = true;
  return cell;
}

}  // namespace

void Sheet::SetNumber(int32_t row, int32_t column, std::string_view decimal_text) {
  pugi::xml_node cell = ClearedCell(*impl_, row, column);
  cell.append_child("v").text().set(std::string(decimal_text).c_str());
  owner_.MarkChanged();
}

void Sheet::SetDate(int32_t row, int32_t column, Date date) {
  pugi::xml_node cell = ClearedCell(*impl_, row, column);
  const uint32_t style = owner_.DateStyle(cell.attribute("s").as_uint());
  if (!cell.attribute("s")) cell.append_attribute("s");
  cell.attribute("s").set_value(style);
  cell.append_child("v").text().set(NumberText(date.Serial()).c_str());
  owner_.MarkChanged();
}

void Sheet::SetValue(int32_t row, int32_t column, const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty:
    case VariantType::Null:
      ClearedCell(*impl_, row, column);
      owner_.MarkChanged();
      return;
    case VariantType::Date: SetDate(row, column, CDate(value)); return;
    case VariantType::Currency: SetNumber(row, column, CCur(value).ToPlainString()); return;
    case VariantType::Boolean: {
      pugi::xml_node cell = ClearedCell(*impl_, row, column);
      cell.append_attribute("t") = "b";
      cell.append_child("v").text().set(CBool(value) ? "1" : "0");
      owner_.MarkChanged();
      return;
    }
    case VariantType::String: {
      pugi::xml_node cell = ClearedCell(*impl_, row, column);
      cell.append_attribute("t") = "inlineStr";
      pugi::xml_node text = cell.append_child("is").append_child("t");
      const std::string content = CStr(value);
      if (!content.empty() && (content.front() == ' ' || content.back() == ' ')) {
        text.append_attribute("xml:space") = "preserve";
      }
      text.text().set(content.c_str());
      owner_.MarkChanged();
      return;
    }
    case VariantType::Double: SetNumber(row, column, NumberText(CDbl(value))); return;
    default: SetNumber(row, column, std::to_string(CLng(value))); return;
  }
}

// ---- a new package ------------------------------------------------------

void WritePackage(const fs::path& path, const std::vector<std::pair<std::string, std::string>>& parts) {
  std::random_device random;
  const fs::path temporary = path.parent_path() / ("." + path.filename().string() + "." + std::to_string(random()) + ".tmp");
  int zip_error = 0;
  ZipHandle archive(zip_open(temporary.c_str(), ZIP_CREATE | ZIP_EXCL, &zip_error));
  if (!archive) RaiseFileError(path, "could not be written: its folder can't be written into");
  for (const auto& [part, data] : parts) {
    zip_source_t* source = zip_source_buffer(archive.get(), data.data(), data.size(), 0);
    if (source == nullptr || zip_file_add(archive.get(), part.c_str(), source, ZIP_FL_ENC_UTF_8) < 0) {
      if (source != nullptr) zip_source_free(source);
      RaiseFileError(path, "could not be written: " + std::string(zip_strerror(archive.get())));
    }
  }
  if (zip_close(archive.get()) != 0) {
    RaiseFileError(path, "could not be written: " + std::string(zip_strerror(archive.get())));
  }
  archive.release();
  detail::KeepOthersFromWriting(temporary);
  std::error_code error;
  fs::rename(temporary, path, error);
  if (error) {
    fs::remove(temporary, error);
    RaiseFileError(path, "could not be written: " + error.message());
  }
}

}  // namespace vek::workbook

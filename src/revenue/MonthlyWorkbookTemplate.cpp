#include "vek/revenue/MonthlyWorkbookTemplate.h"

#include <string>
#include <utility>
#include <vector>

#include "vek/db/workbook/WorkbookFile.h"

namespace vek {
namespace {

using workbook::Sheet;

constexpr std::string_view kXmlHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
constexpr std::string_view kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr std::string_view kRelationships = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

// Cell styles of styles.xml: 0 General, 1 the day, 2 money, 3 quantities.
constexpr int kDateStyle = 1;
constexpr int kMoneyStyle = 2;
constexpr int kQuantityStyle = 3;

std::string InlineText(const std::string& reference, std::string_view text, int style = 0) {
  return "<c r=\"" + reference + "\"" + (style ? " s=\"" + std::to_string(style) + "\"" : "") +
         " t=\"inlineStr\"><is><t>" + std::string(text) + "</t></is></c>";
}

std::string DataSheet() {
  std::string xml = std::string(kXmlHeader) + "<worksheet xmlns=\"" + std::string(kMain) + "\" xmlns:r=\"" +
                    std::string(kRelationships) + "\"><dimension ref=\"A1:W32\"/>" +
                    "<sheetViews><sheetView workbookViewId=\"0\"><pane ySplit=\"1\" topLeftCell=\"A2\" "
                    "activePane=\"bottomLeft\" state=\"frozen\"/></sheetView></sheetViews>"
                    "<sheetFormatPr defaultRowHeight=\"15\"/><cols><col min=\"1\" max=\"1\" width=\"17\" "
                    "customWidth=\"1\"/><col min=\"2\" max=\"2\" width=\"12\" customWidth=\"1\"/><col min=\"3\" "
                    "max=\"23\" width=\"21\" customWidth=\"1\"/></cols><sheetData><row r=\"1\">";
  for (size_t column = 0; column < kMonthlyWorkbookHeadings.size(); ++column) {
    xml += InlineText(Sheet::ColumnLetters(static_cast<int32_t>(column)) + "1", kMonthlyWorkbookHeadings[column]);
  }
  xml += "</row>";
  for (int day = 1; day <= 31; ++day) {
    const std::string row = std::to_string(day + 1);
    xml += "<row r=\"" + row + "\"><c r=\"A" + row + "\"><v>" + std::to_string(day) + "</v></c>";
    for (size_t column = 1; column < kMonthlyWorkbookHeadings.size(); ++column) {
      const std::string_view heading = kMonthlyWorkbookHeadings[column];
      const int style = column == 1 ? kDateStyle : heading.starts_with("Vl_") ? kMoneyStyle : kQuantityStyle;
      xml += "<c r=\"" + Sheet::ColumnLetters(static_cast<int32_t>(column)) + row + "\" s=\"" +
             std::to_string(style) + "\"/>";
    }
    xml += "</row>";
  }
  return xml + "</sheetData></worksheet>";
}

// The month's totals, worked out from DADOS by formulas. The cached values
// are those of the empty template; a workbook that opens recalculates them.
std::string SummarySheet() {
  const std::pair<std::string_view, std::string_view> totals[] = {
      {"Passageiros embarcados", "C"}, {"Total embarque", "D"},       {"Total sanitário", "F"},
      {"Total estacionamento", "H"},   {"Total malex", "J"},          {"Total depositado", "K"},
  };
  std::string xml = std::string(kXmlHeader) + "<worksheet xmlns=\"" + std::string(kMain) + "\" xmlns:r=\"" +
                    std::string(kRelationships) + "\"><dimension ref=\"A1:B6\"/><cols><col min=\"1\" max=\"1\" "
                    "width=\"24\" customWidth=\"1\"/><col min=\"2\" max=\"2\" width=\"16\" customWidth=\"1\"/></cols>"
                    "<sheetData>";
  int row = 1;
  for (const auto& [caption, column] : totals) {
    const std::string r = std::to_string(row++);
    const int style = column == "C" ? kQuantityStyle : kMoneyStyle;
    xml += "<row r=\"" + r + "\">" + InlineText("A" + r, caption) + "<c r=\"B" + r + "\" s=\"" + std::to_string(style) +
           "\"><f>SUM(DADOS!" + std::string(column) + "2:" + std::string(column) + "32)</f><v>0</v></c></row>";
  }
  return xml + "</sheetData></worksheet>";
}

}  // namespace

void WriteMonthlyWorkbookTemplate(const std::filesystem::path& path) {
  const std::string main(kMain);
  const std::string rels(kRelationships);
  const std::string package_rels = "http://schemas.openxmlformats.org/package/2006/relationships";
  const std::string types = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
  std::vector<std::pair<std::string, std::string>> parts;
  parts.emplace_back("[Content_Types].xml",
                     std::string(kXmlHeader) +
                         "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                         "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                         "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
                         "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" + types + "sheet.main+xml\"/>"
                         "<Override PartName=\"/xl/worksheets/sheet1.xml\" ContentType=\"" + types + "worksheet+xml\"/>"
                         "<Override PartName=\"/xl/worksheets/sheet2.xml\" ContentType=\"" + types + "worksheet+xml\"/>"
                         "<Override PartName=\"/xl/styles.xml\" ContentType=\"" + types + "styles+xml\"/>"
                         "</Types>");
  parts.emplace_back("_rels/.rels", std::string(kXmlHeader) + "<Relationships xmlns=\"" + package_rels +
                                        "\"><Relationship Id=\"rId1\" Type=\"" + rels +
                                        "/officeDocument\" Target=\"xl/workbook.xml\"/></Relationships>");
  parts.emplace_back("xl/workbook.xml",
                     std::string(kXmlHeader) + "<workbook xmlns=\"" + main + "\" xmlns:r=\"" + rels +
                         "\"><bookViews><workbookView activeTab=\"0\"/></bookViews><sheets>"
                         "<sheet name=\"DADOS\" sheetId=\"1\" r:id=\"rId1\"/>"
                         "<sheet name=\"Resumo\" sheetId=\"2\" r:id=\"rId2\"/></sheets>"
                         "<calcPr fullCalcOnLoad=\"1\"/></workbook>");
  parts.emplace_back("xl/_rels/workbook.xml.rels",
                     std::string(kXmlHeader) + "<Relationships xmlns=\"" + package_rels + "\">"
                         "<Relationship Id=\"rId1\" Type=\"" + rels + "/worksheet\" Target=\"worksheets/sheet1.xml\"/>"
                         "<Relationship Id=\"rId2\" Type=\"" + rels + "/worksheet\" Target=\"worksheets/sheet2.xml\"/>"
                         "<Relationship Id=\"rId3\" Type=\"" + rels + "/styles\" Target=\"styles.xml\"/>"
                         "</Relationships>");
  parts.emplace_back("xl/styles.xml",
                     std::string(kXmlHeader) + "<styleSheet xmlns=\"" + main + "\">"
                         "<numFmts count=\"1\"><numFmt numFmtId=\"164\" formatCode=\"dd/mm/yyyy\"/></numFmts>"
                         "<fonts count=\"1\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
                         "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
                         "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
                         "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
                         "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
                         "<cellXfs count=\"4\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
                         "<xf numFmtId=\"164\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
                         "<xf numFmtId=\"2\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
                         "<xf numFmtId=\"1\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
                         "</cellXfs><cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/>"
                         "</cellStyles></styleSheet>");
  parts.emplace_back("xl/worksheets/sheet1.xml", DataSheet());
  parts.emplace_back("xl/worksheets/sheet2.xml", SummarySheet());
  workbook::WritePackage(path, parts);
}

}  // namespace vek

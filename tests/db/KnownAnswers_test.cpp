// T-SQL expressions with the value and the column type SQL Server gives them,
// run on the terminal's engine: the programs were written against SQL
// Server, so every engine must answer as it does. Each row names where its
// answer comes from: a page of SQL Server's documentation ("CAST and
// CONVERT", "Data type precedence", ...) or the server's settings the
// terminal's installations run with (language Português: DATEFORMAT dmy,
// DATEFIRST 7; collation SQL_Latin1_General_CP1_CI_AS).

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "support/TerminalDatabase.h"
#include "vek/db/Field.h"
#include "vek/platform/Currency.h"
#include "vek/platform/Date.h"

namespace vek {
namespace {

struct KnownAnswer {
  const char* expression;  // selected as the column V; a row with FROM is the whole select list and source
  const char* value;       // "NULL" for Null, "ERROR" where SQL Server refuses the statement
  DataTypeEnum type;
  const char* source;
};

constexpr const char* kPrecedence = "Data type precedence";
constexpr const char* kMoney = "money and smallmoney";
constexpr const char* kConvert = "CAST and CONVERT";
constexpr const char* kCollation = "collation SQL_Latin1_General_CP1_CI_AS";
constexpr const char* kPadding = "comparisons ignore trailing blanks (SET ANSI_PADDING)";
constexpr const char* kArithmetic = "Arithmetic operators: integer division truncates";
constexpr const char* kDatediff = "DATEDIFF: counts boundaries crossed";
constexpr const char* kDateadd = "DATEADD";
constexpr const char* kDatepart = "DATEPART (DATEFIRST 7)";
constexpr const char* kDmy = "SET DATEFORMAT dmy";
constexpr const char* kAggregates = "Aggregate functions";
constexpr const char* kNulls = "CONCAT_NULL_YIELDS_NULL ON; NULL in arithmetic";
constexpr const char* kStrings = "String functions";
constexpr const char* kMath = "Mathematical functions";

constexpr KnownAnswer kAnswers[] = {
    // Money: a 64-bit count of ten-thousandths, exact in sums and differences.
    {"CONVERT(money, 4.35) - CONVERT(money, 4.25)", "0.1", adCurrency, kMoney},
    {"CASE WHEN CONVERT(money, 4.35) - CONVERT(money, 4.25) = 0.1 THEN 1 ELSE 0 END", "1", adInteger, kMoney},
    {"CASE WHEN CONVERT(money, 0.1) + CONVERT(money, 0.2) = 0.3 THEN 1 ELSE 0 END", "1", adInteger, kMoney},
    {"CONVERT(money, 0.1) + CONVERT(money, 0.2)", "0.3", adCurrency, kMoney},
    {"CONVERT(money, 10) / 3", "3.3333", adCurrency, kPrecedence},
    {"CONVERT(money, 1) / 4", "0.25", adCurrency, kPrecedence},
    {"CONVERT(money, 10) * 3", "30", adCurrency, kPrecedence},
    {"CONVERT(money, 1) + 1", "2", adCurrency, kPrecedence},
    {"2 * CONVERT(money, 1.5)", "3", adCurrency, kPrecedence},
    {"CONVERT(money, 1) + 1.5", "2.5", adNumeric, kPrecedence},
    {"CONVERT(money, 1) * 1.5", "1.5", adNumeric, kPrecedence},
    {"CONVERT(float, CONVERT(money, 1)) / 4", "0.25", adDouble, kPrecedence},
    {"-CONVERT(money, 5)", "-5", adCurrency, kMoney},
    {"CONVERT(money, 1.23456)", "1.2346", adCurrency, kConvert},
    {"CONVERT(money, 1.23454)", "1.2345", adCurrency, kConvert},
    {"CONVERT(money, '12.5')", "12.5", adCurrency, kConvert},
    {"CONVERT(money, 'abc')", "ERROR", adEmpty, kConvert},
    {"CONVERT(money, 1000000000000000)", "ERROR", adEmpty, kMoney},
    {"CONVERT(money, 123456789.1234) + CONVERT(money, 0.0001)", "123456789.1235", adCurrency, kMoney},
    {"CONVERT(money, 0.3) - CONVERT(money, 0.1) - CONVERT(money, 0.2)", "0", adCurrency, kMoney},
    {"CASE WHEN CONVERT(money, 0.3) - CONVERT(money, 0.1) = CONVERT(money, 0.2) THEN 1 ELSE 0 END", "1", adInteger,
     kMoney},
    {"CONVERT(money, 19.99) * 3", "59.97", adCurrency, kMoney},
    {"CONVERT(varchar, CONVERT(money, 10) / 3)", "3.33", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, 1234567.891))", "1234567.89", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, 1234567.891), 1)", "1,234,567.89", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, 1234567.891), 2)", "1234567.8910", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, 10))", "10.00", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, 0.005))", "0.01", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, -0.005))", "-0.01", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(money, -1234.5), 1)", "-1,234.50", adVarChar, kConvert},

    // Integers and the meeting of types.
    {"'1' + 1", "2", adInteger, kPrecedence},
    {"1 + '1'", "2", adInteger, kPrecedence},
    {"'5' - 2", "3", adInteger, kPrecedence},
    {"' 7 ' + 1", "8", adInteger, kPrecedence},
    {"'a' + 1", "ERROR", adEmpty, kPrecedence},
    {"'1.5' + 1", "ERROR", adEmpty, kPrecedence},
    {"'1.5' + 1.0", "2.5", adNumeric, kPrecedence},
    {"'2' + CONVERT(money, 1)", "3", adCurrency, kPrecedence},
    {"1 + 1", "2", adInteger, kArithmetic},
    {"7 / 2", "3", adInteger, kArithmetic},
    {"-7 / 2", "-3", adInteger, kArithmetic},
    {"7 % 3", "1", adInteger, kArithmetic},
    {"7 / 2.0", "3.5", adNumeric, kArithmetic},
    {"2 * 3 + 4", "10", adInteger, kArithmetic},
    {"2 + 3 * 4", "14", adInteger, kArithmetic},
    {"(2 + 3) * 4", "20", adInteger, kArithmetic},
    {"1.5", "1.5", adNumeric, kPrecedence},
    {"1.5 + 1", "2.5", adNumeric, kPrecedence},
    {"1e1", "10", adDouble, kPrecedence},
    {"1e1 + 1", "11", adDouble, kPrecedence},
    {"CONVERT(float, 1) / 4", "0.25", adDouble, kPrecedence},
    {"CONVERT(int, '42')", "42", adInteger, kConvert},
    {"CONVERT(int, 3.9)", "3", adInteger, kConvert},
    {"CONVERT(int, -3.9)", "-3", adInteger, kConvert},
    {"CAST('12' AS int) * 2", "24", adInteger, kConvert},
    {"CONVERT(int, 'x')", "ERROR", adEmpty, kConvert},
    {"CONVERT(numeric(10,2), 3.14159)", "3.14", adNumeric, kConvert},
    {"CONVERT(numeric(10,2), 2.675)", "2.68", adNumeric, kConvert},
    {"CONVERT(numeric(10,0), 2.5)", "3", adNumeric, kConvert},
    {"CONVERT(decimal(5,1), -2.25)", "-2.3", adNumeric, kConvert},

    // NULLs.
    {"NULL", "NULL", adInteger, kNulls},
    {"NULL + 1", "NULL", adInteger, kNulls},
    {"'a' + NULL", "NULL", adVarChar, kNulls},
    {"ISNULL(NULL, 'x')", "x", adVarChar, "ISNULL"},
    {"ISNULL(NULL, 1)", "1", adInteger, "ISNULL"},
    {"ISNULL(5, 1)", "5", adInteger, "ISNULL"},
    {"COALESCE(NULL, NULL, 3)", "3", adInteger, "COALESCE"},
    {"NULLIF(1, 1)", "NULL", adInteger, "NULLIF"},
    {"NULLIF(2, 1)", "2", adInteger, "NULLIF"},
    {"CASE WHEN NULL = NULL THEN 1 ELSE 0 END", "0", adInteger, kNulls},

    // Texts: the collation is case-insensitive and accent-sensitive, and
    // trailing blanks don't count in a comparison.
    {"'abc' + 'def'", "abcdef", adVarChar, kStrings},
    {"'2024-03-15'", "2024-03-15", adVarChar, kPrecedence},
    {"'15/03/2024'", "15/03/2024", adVarChar, kPrecedence},
    {"'2024-03-15' + 'x'", "2024-03-15x", adVarChar, kStrings},
    {"'x'", "x", adVarChar, kPrecedence},
    {"''", "", adVarChar, kPrecedence},
    {"CASE WHEN 'abc' = 'ABC' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'abc' = 'abc   ' THEN 1 ELSE 0 END", "1", adInteger, kPadding},
    {"CASE WHEN 'abc   ' = 'ABC' THEN 1 ELSE 0 END", "1", adInteger, kPadding},
    {"CASE WHEN 'são' = 'SÃO' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'sao' = 'são' THEN 1 ELSE 0 END", "0", adInteger, kCollation},
    {"CASE WHEN 'abc' < 'ABD' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'a' <> 'A' THEN 1 ELSE 0 END", "0", adInteger, kCollation},
    {"CASE WHEN 'b' > 'A' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'abc' = 'abd' THEN 1 ELSE 0 END", "0", adInteger, kCollation},
    {"CASE WHEN UPPER('abc') = 'abc' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'ação' LIKE 'AÇ%' THEN 1 ELSE 0 END", "1", adInteger, kCollation},
    {"CASE WHEN 'abc' LIKE 'abc ' THEN 1 ELSE 0 END", "0", adInteger, "LIKE: trailing blanks in the pattern count"},
    {"LEN('abc   ')", "3", adInteger, kStrings},
    {"LEN('  abc')", "5", adInteger, kStrings},
    {"LEN('')", "0", adInteger, kStrings},
    {"LEN('ação')", "4", adInteger, kStrings},
    {"LEN(NULL)", "NULL", adInteger, kStrings},
    {"SUBSTRING('abcdef', 2, 3)", "bcd", adVarChar, kStrings},
    {"SUBSTRING('abcdef', 0, 3)", "ab", adVarChar, kStrings},
    {"SUBSTRING('abcdef', -1, 3)", "a", adVarChar, kStrings},
    {"SUBSTRING('abcdef', 5, 10)", "ef", adVarChar, kStrings},
    {"SUBSTRING('ação', 2, 2)", "çã", adVarChar, kStrings},
    {"LEFT('abcdef', 2)", "ab", adVarChar, kStrings},
    {"RIGHT('abcdef', 2)", "ef", adVarChar, kStrings},
    {"UPPER('ação')", "AÇÃO", adVarChar, kStrings},
    {"LOWER('AÇÃO')", "ação", adVarChar, kStrings},
    {"LTRIM('  a ')", "a ", adVarChar, kStrings},
    {"RTRIM(' a  ')", " a", adVarChar, kStrings},
    {"REPLACE('aXbx', 'x', 'y')", "ayby", adVarChar, kCollation},
    {"CHARINDEX('c', 'abcabc')", "3", adInteger, kStrings},
    {"CHARINDEX('C', 'abcabc', 4)", "6", adInteger, kCollation},
    {"CHARINDEX('z', 'abc')", "0", adInteger, kStrings},
    {"CONVERT(varchar(3), 'abcdef')", "abc", adVarChar, kConvert},
    {"CONVERT(char(5), 'ab') + '|'", "ab   |", adVarChar, kConvert},
    {"CONVERT(varchar, 123)", "123", adVarChar, kConvert},
    {"CONVERT(varchar, -5)", "-5", adVarChar, kConvert},
    {"CONVERT(varchar, 123) + 'x'", "123x", adVarChar, kConvert},

    // Mathematics: the result keeps the argument's kind.
    {"ROUND(2.5, 0)", "3", adNumeric, kMath},
    {"ROUND(-2.5, 0)", "-3", adNumeric, kMath},
    {"ROUND(1234.5678, 2)", "1234.57", adNumeric, kMath},
    {"ROUND(1234.5678, -2)", "1200", adNumeric, kMath},
    {"ROUND(1.23456, 2, 1)", "1.23", adNumeric, kMath},
    {"ROUND(CONVERT(money, 2.675), 2)", "2.68", adCurrency, kMath},
    {"ABS(-5)", "5", adInteger, kMath},
    {"ABS(-5.5)", "5.5", adNumeric, kMath},
    {"FLOOR(2.7)", "2", adNumeric, kMath},
    {"CEILING(2.1)", "3", adNumeric, kMath},
    {"FLOOR(-2.1)", "-3", adNumeric, kMath},
    {"SIGN(-3)", "-1", adInteger, kMath},

    // Dates: text is read day first; styles of CONVERT.
    {"CONVERT(datetime, '15/03/2024 14:05')", "2024-03-15 14:05:00", adDBTimeStamp, kDmy},
    {"CONVERT(datetime, '2024-03-15')", "2024-03-15 00:00:00", adDBTimeStamp, kConvert},
    {"CONVERT(datetime, 'not a date')", "ERROR", adEmpty, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 120)", "2024-03-15 14:05:00", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 20)", "2024-03-15 14:05:00", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 121)", "2024-03-15 14:05:00.000", adVarChar,
     kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 103)", "15/03/2024", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 3)", "15/03/24", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 104)", "15.03.2024", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 4)", "15.03.24", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 105)", "15-03-2024", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 5)", "15-03-24", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 108)", "14:05:00", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 8)", "14:05:00", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 112)", "20240315", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 12)", "240315", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 23)", "2024-03-15", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-15 14:05:00'), 126)", "2024-03-15T14:05:00", adVarChar, kConvert},
    {"CONVERT(varchar(10), CONVERT(datetime, '2024-03-15 14:05:00'), 120)", "2024-03-15", adVarChar, kConvert},
    {"CONVERT(varchar, CONVERT(datetime, '2024-03-05'), 103)", "05/03/2024", adVarChar, kConvert},
    {"CONVERT(datetime, '2024-03-15') + 1", "2024-03-16 00:00:00", adDBTimeStamp, kPrecedence},
    {"CONVERT(varchar(10), CONVERT(datetime, '2024-03-15') + 1, 103)", "16/03/2024", adVarChar, kPrecedence},
    {"CONVERT(date, CONVERT(datetime, '2024-03-15 14:05'))", "2024-03-15 00:00:00", adDBTimeStamp, kConvert},
    {"CASE WHEN CONVERT(datetime, '2024-03-15 10:00') > '15/03/2024' THEN 1 ELSE 0 END", "1", adInteger, kDmy},
    {"CASE WHEN CONVERT(datetime, '2024-03-15') = '15/03/2024' THEN 1 ELSE 0 END", "1", adInteger, kDmy},
    {"DATEDIFF(day, '2024-03-15 23:59', '2024-03-16 00:01')", "1", adInteger, kDatediff},
    {"DATEDIFF(day, '2024-03-15 00:01', '2024-03-15 23:59')", "0", adInteger, kDatediff},
    {"DATEDIFF(day, '2024-03-16', '2024-03-15')", "-1", adInteger, kDatediff},
    {"DATEDIFF(day, '2024-01-01', '2024-03-31')", "90", adInteger, kDatediff},
    {"DATEDIFF(month, '2024-01-31', '2024-02-01')", "1", adInteger, kDatediff},
    {"DATEDIFF(year, '2023-12-31', '2024-01-01')", "1", adInteger, kDatediff},
    {"DATEDIFF(hour, '2024-03-15 10:59', '2024-03-15 11:00')", "1", adInteger, kDatediff},
    {"DATEDIFF(minute, '2024-03-15 10:00:59', '2024-03-15 10:01:00')", "1", adInteger, kDatediff},
    {"DATEDIFF(second, '2024-03-15 10:00:00', '2024-03-15 10:01:30')", "90", adInteger, kDatediff},
    {"DATEADD(day, 1, '2024-02-28')", "2024-02-29 00:00:00", adDBTimeStamp, kDateadd},
    {"DATEADD(day, -1, '2024-03-01')", "2024-02-29 00:00:00", adDBTimeStamp, kDateadd},
    {"DATEADD(month, 1, '2024-01-31')", "2024-02-29 00:00:00", adDBTimeStamp, kDateadd},
    {"DATEADD(year, 1, '2024-02-29')", "2025-02-28 00:00:00", adDBTimeStamp, kDateadd},
    {"DATEADD(minute, 90, '2024-03-15 23:00')", "2024-03-16 00:30:00", adDBTimeStamp, kDateadd},
    {"DATEADD(hour, -1, '2024-01-01 00:30')", "2023-12-31 23:30:00", adDBTimeStamp, kDateadd},
    {"DATEPART(weekday, '2024-03-17')", "1", adInteger, kDatepart},
    {"DATEPART(weekday, '2024-03-16')", "7", adInteger, kDatepart},
    {"DATEPART(dayofyear, '2024-03-01')", "61", adInteger, kDatepart},
    {"DATEPART(hour, '2024-03-15 14:05')", "14", adInteger, kDatepart},
    {"DATEPART(minute, '2024-03-15 14:05')", "5", adInteger, kDatepart},
    {"DAY('2024-03-15')", "15", adInteger, kDatepart},
    {"MONTH('2024-03-15')", "3", adInteger, kDatepart},
    {"YEAR('2024-03-15')", "2024", adInteger, kDatepart},
    {"DAY(CONVERT(datetime, '2024-02-29'))", "29", adInteger, kDatepart},
    {"CONVERT(varchar, DAY('2024-03-05')) + '/' + CONVERT(varchar, MONTH('2024-03-05'))", "5/3", adVarChar,
     kStrings},
    {"DAY('2024-03-05') + MONTH('2024-03-05')", "8", adInteger, kPrecedence},

    // Columns and aggregates, on rows the test writes: ten deposits of 0.10
    // and the colours 1 and 2.
    {"SUM(Vl_Deposito) AS V FROM TbFechamentoDiario", "1", adCurrency, kMoney},
    {"CASE WHEN SUM(Vl_Deposito) = 1 THEN 1 ELSE 0 END AS V FROM TbFechamentoDiario", "1", adInteger, kMoney},
    {"SUM(Vl_Deposito) - 1 AS V FROM TbFechamentoDiario", "0", adCurrency, kMoney},
    {"AVG(Vl_Deposito) AS V FROM TbFechamentoDiario", "0.1", adCurrency, kAggregates},
    {"MAX(Vl_Deposito) AS V FROM TbFechamentoDiario", "0.1", adCurrency, kAggregates},
    {"COUNT(Vl_Deposito) AS V FROM TbFechamentoDiario", "10", adInteger, kAggregates},
    {"COUNT(*) AS V FROM TbFechamentoDiario", "10", adInteger, kAggregates},
    {"SUM(Vl_Deposito * 3) AS V FROM TbFechamentoDiario", "3", adCurrency, kMoney},
    {"SUM(Vl_Deposito) * 3 AS V FROM TbFechamentoDiario", "3", adCurrency, kMoney},
    {"CONVERT(varchar, SUM(Vl_Deposito)) AS V FROM TbFechamentoDiario", "1.00", adVarChar, kConvert},
    {"Vl_Deposito + Vl_Deposito + Vl_Deposito AS V FROM TbFechamentoDiario "
     "WHERE Dt_FechamentoDiario = '01/03/2024'",
     "0.3", adCurrency, kMoney},
    {"CASE WHEN Vl_Deposito * 3 = 0.3 THEN 1 ELSE 0 END AS V FROM TbFechamentoDiario "
     "WHERE Dt_FechamentoDiario = '01/03/2024'",
     "1", adInteger, kMoney},
    {"SUM(Vl_Deposito) AS V FROM TbFechamentoDiario WHERE Vl_Deposito > 1", "NULL", adCurrency, kAggregates},
    {"COUNT(*) AS V FROM TbFechamentoDiario WHERE Vl_Deposito = 0.1", "10", adInteger, kMoney},
    {"AVG(Cd_Cor) AS V FROM TbCor", "1", adInteger, "AVG: the average of integers is an integer"},
    {"SUM(Cd_Cor) AS V FROM TbCor", "3", adInteger, kAggregates},
    {"AVG(Cd_Cor * 1.0) AS V FROM TbCor", "1.5", adNumeric, kAggregates},
    {"MAX(Nm_Cor) AS V FROM TbCor", "Branco", adVarChar, kAggregates},
    {"MIN(Nm_Cor) AS V FROM TbCor", "azul", adVarChar, kCollation},
    {"COUNT(*) AS V FROM TbCor WHERE Nm_Cor = 'AZUL'", "1", adInteger, kCollation},
    {"COUNT(*) AS V FROM TbCor WHERE Nm_Cor = 'azul  '", "1", adInteger, kPadding},
    {"'1' + Cd_Cor AS V FROM TbCor WHERE Cd_Cor = 2", "3", adInteger, kPrecedence},
    {"CONVERT(varchar, Cd_Cor) + '/' + Nm_Cor AS V FROM TbCor WHERE Cd_Cor = 2", "2/Branco", adVarChar, kStrings},
    {"COUNT(*) AS V FROM TbFechamentoDiario WHERE Dt_FechamentoDiario >= '01/03/2024' AND "
     "Dt_FechamentoDiario < '03/03/2024'",
     "2", adInteger, kDmy},
    {"MAX(Dt_FechamentoDiario) AS V FROM TbFechamentoDiario", "2024-03-10 00:00:00", adDBTimeStamp, kAggregates},
    {"DATEDIFF(day, MIN(Dt_FechamentoDiario), MAX(Dt_FechamentoDiario)) AS V FROM TbFechamentoDiario", "9",
     adInteger, kDatediff},
    {"CONVERT(varchar, MAX(Dt_FechamentoDiario), 103) AS V FROM TbFechamentoDiario", "10/03/2024", adVarChar,
     kConvert},
};

// The value as the table writes it: money and numbers without trailing
// zeros, dates as yyyy-mm-dd hh:mm:ss.
std::string Written(const Variant& value) {
  char buffer[64];
  switch (value.Type()) {
    case VariantType::Null: return "NULL";
    case VariantType::Currency: {
      const int64_t raw = value.Get<Currency>()->Raw();
      const uint64_t magnitude = raw < 0 ? 0 - static_cast<uint64_t>(raw) : static_cast<uint64_t>(raw);
      std::string text = (raw < 0 ? "-" : "") + std::to_string(magnitude / 10000);
      std::snprintf(buffer, sizeof buffer, "%04llu", static_cast<unsigned long long>(magnitude % 10000));
      std::string fraction = buffer;
      while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
      return fraction.empty() ? text : text + "." + fraction;
    }
    case VariantType::Double:
      std::snprintf(buffer, sizeof buffer, "%.15g", *value.Get<double>());
      return buffer;
    case VariantType::Date: {
      const Date date = *value.Get<Date>();
      std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", Year(date), Month(date), Day(date),
                    Hour(date), Minute(date), Second(date));
      return buffer;
    }
    case VariantType::String: return *value.Get<std::string>();
    default: return std::to_string(CLng(value));
  }
}

class KnownAnswersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int day = 1; day <= 10; ++day) {
      db_.Query("INSERT INTO TbFechamentoDiario (Cd_EmpresaUsuariaSistema, Dt_FechamentoDiario, Vl_Deposito) "
                "VALUES (1, '" + std::string(day < 10 ? "0" : "") + std::to_string(day) + "/03/2024', 0.10)");
    }
    db_.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (1, 'azul')");
    db_.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (2, 'Branco')");
  }

  testing::TerminalDatabase db_;
};

TEST_F(KnownAnswersTest, EveryExpressionGivesSqlServersValueAndType) {
  for (const KnownAnswer& answer : kAnswers) {
    const std::string expression = answer.expression;
    const std::string statement =
        "SELECT " + (expression.find(" FROM ") != std::string::npos ? expression : expression + " AS V");
    SCOPED_TRACE(statement + "  [" + answer.source + "]");
    if (std::string_view(answer.value) == "ERROR") {
      EXPECT_THROW(db_.Query(statement), VekError);
      continue;
    }
    std::shared_ptr<Recordset> rows;
    try {
      rows = db_.Query(statement);
    } catch (const VekError& error) {
      ADD_FAILURE() << error.Description();
      continue;
    }
    Field& field = rows->Fields().Item("V");
    EXPECT_EQ(Written(field.Value()), answer.value);
    EXPECT_EQ(field.Type(), answer.type);
  }
}

}  // namespace
}  // namespace vek

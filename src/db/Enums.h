#pragma once
// The enumerations of the data-access objects, with the classic names and values.

#include <cstdint>

namespace vek {

enum CursorTypeEnum : int32_t {
  adOpenUnspecified = -1,
  adOpenForwardOnly = 0,
  adOpenKeyset = 1,
  adOpenDynamic = 2,
  adOpenStatic = 3,
};

enum LockTypeEnum : int32_t {
  adLockUnspecified = -1,
  adLockReadOnly = 1,
  adLockPessimistic = 2,
  adLockOptimistic = 3,
  adLockBatchOptimistic = 4,
};

enum CursorLocationEnum : int32_t {
  adUseServer = 2,
  adUseClient = 3,
};

enum ObjectStateEnum : int32_t {
  adStateClosed = 0,
  adStateOpen = 1,
};

enum CommandTypeEnum : int32_t {
  adCmdUnspecified = -1,
  adCmdText = 1,
  adCmdTable = 2,
  adCmdStoredProc = 4,
  adCmdUnknown = 8,
  adCmdTableDirect = 512,
};

enum ExecuteOptionEnum : int32_t {
  adOptionUnspecified = -1,
  adExecuteNoRecords = 128,
};

enum ParameterDirectionEnum : int32_t {
  adParamUnknown = 0,
  adParamInput = 1,
  adParamOutput = 2,
  adParamInputOutput = 3,
  adParamReturnValue = 4,
};

enum DataTypeEnum : int32_t {
  adEmpty = 0,
  adSmallInt = 2,
  adInteger = 3,
  adSingle = 4,
  adDouble = 5,
  adCurrency = 6,
  adDate = 7,
  adBoolean = 11,
  adVariant = 12,
  adDecimal = 14,
  adTinyInt = 16,
  adUnsignedTinyInt = 17,
  adBigInt = 20,
  adNumeric = 131,
  adDBDate = 133,
  adDBTime = 134,
  adDBTimeStamp = 135,
  adChar = 129,
  adWChar = 130,
  adVarChar = 200,
  adLongVarChar = 201,
  adVarWChar = 202,
  adLongVarWChar = 203,
};

// The SQL dialect a connection speaks natively; statements are always built in
// SQL Server's and translated for the others. Access is the Jet SQL of the
// report database (bdTemp), a SQLite file underneath.
enum class Dialect { SqlServer, SQLite, PostgreSQL, Access };

}  // namespace vek

#include "vek/db/DbError.h"

#include "vek/platform/VekError.h"

namespace vek {

void RaiseAdoError(int32_t number, const char* object) {
  std::string text;
  switch (number) {
    case adErrItemNotFound:
      text = "Item cannot be found in the collection corresponding to the requested name or ordinal.";
      break;
    case adErrNoCurrentRecord:
      text = "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
             "requires a current record.";
      break;
    case adErrObjectClosed: text = "Operation is not allowed when the object is closed."; break;
    case adErrObjectOpen: text = "Operation is not allowed when the object is open."; break;
    case adErrInvalidArgument:
      text = "Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
             "one another.";
      break;
    case adErrFeatureNotAvailable:
      text = "Current Recordset does not support updating. This may be a limitation of the provider, "
             "or of the selected locktype.";
      break;
    default: text = RuntimeErrorText(number);
  }
  throw VekError(number, object, std::move(text));
}

void RaiseDbError(int32_t number, std::string source, std::string description) {
  throw VekError(number, std::move(source), std::move(description));
}

}  // namespace vek

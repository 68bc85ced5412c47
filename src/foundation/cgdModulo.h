#pragma once
// The generic column copy that every data manager shares: property values
// into the current row of a record set, and numbered columns back.

#include "vek/foundation/cgp.h"

namespace vek {

class Recordset;
class cgpSistema;
class RecordManager;

// Writes the property values into the current row, field by field:
// fields without a property are left alone; identity fields are not written
// but read back into the property; a code ("Cd_" prefix) of 0 is written as
// Null, except Cd_PessoaUsuaria, which takes the operating company's
// person; dates on or before 01/01/1900 are written as Null, except in
// Hr_MaximoPermanencia; Hr_Inicial and Hr_Final are written as "hh:Nn:ss"
// text. Errors 13, 438 and 440 of one field are skipped.
void TransferirDadosDeCgpParaBd(cgp& Ob_cgp, Recordset& Ob_Rs, const cgpSistema* Ob_cgpSistema);

// Copies the numbered columns of the current row into the manager's property
// object; returns whether the manager has numbered columns.
bool pegarValorCamposSequencial(RecordManager& Ob_cgd, Recordset& Ob_Rs);

// Copies every field of the current row into the property of its name,
// skipping errors 13, 438 and 440 of one assignment.
void CopyRowToProperties(Recordset& Ob_Rs, cgp& Ob_cgp);

// True for the errors that a single late-bound assignment may raise and the
// copy routines skip: 13, 438 and 440.
bool IsSkippedAssignmentError(int32_t number);

}  // namespace vek

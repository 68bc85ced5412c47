#pragma once
// The property classes of the records: each takes its properties from its
// table in the schema catalogue, plus the extra properties the system names.

#include "vek/foundation/cgp.h"

namespace vek {

#define VEK_RECORD_PROPERTIES(Class, Table, ...) \
  class Class : public cgp {                     \
   public:                                       \
    Class() : cgp(TableProperties(Table, {__VA_ARGS__})) {} \
  };

VEK_RECORD_PROPERTIES(cgpSequenciadores, "TbSequenciadores")
VEK_RECORD_PROPERTIES(cgpUF, "TbUF")
VEK_RECORD_PROPERTIES(cgpCidade, "TbCidade")
VEK_RECORD_PROPERTIES(cgpBairro, "TbBairro")
VEK_RECORD_PROPERTIES(cgpEmpresaUsuariaSistema, "TbEmpresaUsuariaSistema",
                      {"Qt_MinutosMaximoSaidaAposPagamento", PropertyType::Long})

#undef VEK_RECORD_PROPERTIES

}  // namespace vek

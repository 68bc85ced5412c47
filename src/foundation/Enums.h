#pragma once
// The enumerations of the library's public interface.

#include <cstdint>

namespace vek {

enum CdBancoDadosEnum : int32_t {
  BancoDadosFirebird15 = 11,
  BancoDadosSqlServer2000 = 21,
  BancoDadosSQLite3 = 31,  // the embedded default
  BancoDadosPostgreSQL = 41,
};

enum NmDllCgdEnum : int32_t {
  cgdSimAdoSqlAnsiEnum = 1,
};

enum Tp_EdicaoEnum : int32_t {
  Tp_EdicaoInclusao = 1,
  Tp_EdicaoAlteracao = 2,
};

enum Tp_ByteSimNao : uint8_t {
  Nao = 0,
  sim = 1,
};

enum AbrangenciaEnum : int32_t {
  AbrangenciaIntermunicipal = 1,
  AbrangenciaInterestadual = 2,
  AbrangenciaGeral = 3,
};

}  // namespace vek

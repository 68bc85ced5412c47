#pragma once
// The library's side of the protocol benchmarks, whatever the engine: each
// runs on a session already opened on a database of kRows neighbourhoods
// (keys 1 to kRows) of city 1, and counts one item a run.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

#include "vek/foundation/cgpSistema.h"
#include "vek/registry/cgdBairro.h"

namespace vek::bench {

inline constexpr int kRows = 1000;

// What a bench hands its session to, once its database is made.
using LibraryLoop = void (*)(benchmark::State& state, std::shared_ptr<cgpSistema> session);

// Salvar of key 0 inserts; its Excluir takes away the new row, so the
// table keeps its size whatever the number of runs.
inline void InsertAndDelete(cgdBairro& bairro, cgpBairro& record) {
  record.RestaurarDefault();
  record.Let("Nm_Bairro", Variant("Novo"));
  record.Let("Cd_Cidade", Variant(1));
  bairro.Salvar();
  bairro.Excluir();
}

inline void ProtocolConsultar(benchmark::State& state, std::shared_ptr<cgpSistema> session) {
  cgdBairro bairro;
  bairro.Ob_cgpSistema(std::move(session));
  int key = 0;
  for (auto _ : state) {
    bairro.Ob_cgp()->Let("Cd_Bairro", Variant(key++ % kRows + 1));
    benchmark::DoNotOptimize(bairro.Consultar());
  }
  state.SetItemsProcessed(state.iterations());
}

// Salvar of a stored key: its SELECT, then the UPDATE.
inline void ProtocolSalvarUpdate(benchmark::State& state, std::shared_ptr<cgpSistema> session) {
  cgdBairro bairro;
  bairro.Ob_cgpSistema(std::move(session));
  int key = 0;
  for (auto _ : state) {
    auto record = bairro.Ob_cgp();
    record->Let("Cd_Bairro", Variant(key % kRows + 1));
    record->Let("Nm_Bairro", Variant("Renomeado " + std::to_string(key++)));
    record->Let("Cd_Cidade", Variant(1));
    bairro.Salvar();
  }
  state.SetItemsProcessed(state.iterations());
}

inline void ProtocolSalvarInsertExcluir(benchmark::State& state, std::shared_ptr<cgpSistema> session) {
  cgdBairro bairro;
  bairro.Ob_cgpSistema(std::move(session));
  for (auto _ : state) InsertAndDelete(bairro, *bairro.Ob_cgp());
  state.SetItemsProcessed(state.iterations());
}

// The whole loop: a look-up, an update of what it found, an insert and its
// delete. The update keeps the city Consultar loaded.
inline void ProtocolLoop(benchmark::State& state, std::shared_ptr<cgpSistema> session) {
  cgdBairro bairro;
  bairro.Ob_cgpSistema(std::move(session));
  int key = 0;
  for (auto _ : state) {
    auto record = bairro.Ob_cgp();
    record->Let("Cd_Bairro", Variant(key % kRows + 1));
    bairro.Consultar();
    record->Let("Nm_Bairro", Variant("Renomeado " + std::to_string(key++)));
    bairro.Salvar();
    InsertAndDelete(bairro, *record);
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace vek::bench

#!/bin/sh
# The stock sqlite3 shell on a terminal's Vek.db, with and without the vek
# extension loaded:
#   sqlite3_shell_test.sh VEK SQLITE3 EXTENSION WORK_DIR
set -eu
vek=$1
shell=$2
extension=$3
work=$4

fail() { echo "FAIL: $*" >&2; exit 1; }

rm -rf "$work"
"$vek" demo "$work/terminal" >"$work.demo.log" 2>&1 || { cat "$work.demo.log" >&2; fail "vek demo"; }
db="$work/terminal/Vek.db"
[ -f "$db" ] || fail "no $db"

# Without the extension the text columns' collation is unknown to the shell.
if out=$("$shell" -bail "$db" "SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'x';" 2>&1); then
  fail "the shell ran a query on a text column without the extension: $out"
fi
case $out in
  *"no such collation sequence: SQLSERVER_CI_AS"*) ;;
  *) fail "unexpected failure without the extension: $out" ;;
esac

run() { "$shell" -bail -cmd ".load $extension" "$db" "$@"; }

run "INSERT INTO TbCidade (Nm_Cidade, Sg_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm)
     SELECT 'São Tomé das Letras', 'STL', Cd_UF, Sg_UF, 480 FROM TbUF ORDER BY Cd_UF LIMIT 1;" \
  || fail "insert into TbCidade"
[ "$(run "SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'São Tomé das Letras';")" = 1 ] || fail "one São Tomé das Letras"
found=$(run "SELECT Nm_Cidade FROM TbCidade WHERE Nm_Cidade = 'SÃO TOMÉ DAS LETRAS  ';")
[ "$found" = "São Tomé das Letras" ] || fail "'SÃO TOMÉ DAS LETRAS' finds '$found'"
[ "$(run "SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'Sao Tome das Letras';")" = 0 ] \
  || fail "accents count: 'Sao Tome' is not 'São Tomé'"
plan=$(run "EXPLAIN QUERY PLAN SELECT Cd_Cidade FROM TbCidade WHERE Nm_Cidade = 'SÃO TOMÉ DAS LETRAS';")
case $plan in
  *"USING INDEX"*|*"USING COVERING INDEX"*) ;;
  *) fail "the query does not use the index on Nm_Cidade: $plan" ;;
esac
[ "$(run "SELECT vek_datediff('day', '2026-02-28 23:59:59', '2026-03-01 00:00:00');")" = 1 ] \
  || fail "vek_datediff"
[ "$(run "PRAGMA integrity_check;")" = ok ] || fail "integrity_check: $(run "PRAGMA integrity_check;")"
run "VACUUM;" || fail "VACUUM"
[ "$(run "PRAGMA integrity_check;")" = ok ] || fail "integrity_check after VACUUM"
[ "$(run "SELECT Nm_Cidade FROM TbCidade WHERE Nm_Cidade = 'são tomé das letras';")" = "São Tomé das Letras" ] \
  || fail "São Tomé das Letras after VACUUM"

# vek itself still reads the file the shell changed.
out=$("$vek" sql --run "$work/terminal" "SELECT Qt_DistanciaEmKm FROM TbCidade WHERE Nm_Cidade = 'SÃO TOMÉ DAS LETRAS'" 2>&1) \
  || fail "vek sql: $out"
case $out in
  *"Qt_DistanciaEmKm
480
(1 row)"*) ;;
  *) fail "vek sql reads: $out" ;;
esac
rm -rf "$work" "$work.demo.log"
echo "sqlite3 shell with the vek extension: ok"

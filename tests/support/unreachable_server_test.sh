#!/bin/sh
# Asked to run on PostgreSQL (VEK_TEST_ENGINE=postgresql), the tests fail
# when the server cannot be reached, and say so; they never pass by leaving
# the engine out.
#   unreachable_server_test.sh VEK_TESTS WITH_PG_ENV WORK_DIR
set -u
tests=$1
with_env=$2
work=$3

fail() { echo "FAIL: $*" >&2; exit 1; }

# what, a text the output must hold, the command
expect_failure() {
  what=$1
  text=$2
  shift 2
  if out=$("$@" 2>&1); then fail "$what passed: $out"; fi
  case $out in
    *"$text"*) ;;
    *) fail "$what failed without saying why: $out" ;;
  esac
}

rm -rf "$work"
mkdir -p "$work/cluster"
# A cluster folder whose server is not there: nothing listens on port 9.
cat >"$work/cluster/env" <<ENV
VEK_PG_PORT=9
VEK_PG_CONNECTION='Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=9;Database=vek_test;Uid=postgres;Pwd='
ENV
export VEK_TEST_ENGINE=postgresql

expect_failure "behaviour tests on an unreachable server" "cannot connect" \
  "$with_env" "$work/cluster" "$tests" --gtest_filter='cgdBairroTest.*'
expect_failure "server tests on an unreachable server" "cannot connect" \
  "$with_env" "$work/cluster" "$tests" --gtest_filter='PostgresDdlOnServer*'
expect_failure "behaviour tests without a server named" "needs VEK_PG_CONNECTION" \
  env -u VEK_PG_CONNECTION -u VEK_PG_PORT "$tests" --gtest_filter='cgdBairroTest.*'
expect_failure "server tests without a server named" "VEK_PG_CONNECTION is not set" \
  env -u VEK_PG_CONNECTION -u VEK_PG_PORT "$tests" --gtest_filter='PostgresDdlOnServer*'
expect_failure "a run without a started cluster" "no PostgreSQL test cluster" \
  "$with_env" "$work/none" "$tests" --gtest_filter='cgdBairroTest.*'
rm -rf "$work"
echo "an unreachable server fails the PostgreSQL run: ok"

#!/bin/sh
# check.sh COMPILER SRC HERE: compiles the records for 32 bits; the headers' own assertions are the test.
flags="-m32 -malign-double -std=c++20 -fsyntax-only"

if ! printf '#include <string>\n' | "$1" $flags -x c++ -; then
  echo "The compiler $1 cannot compile for 32 bits: install the package g++-multilib." >&2
  exit 1
fi
"$1" $flags -I "$2" "$3/layout32.cpp"

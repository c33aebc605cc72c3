#!/usr/bin/env bash
# Installs a build, moves it to another directory and uses it there as a user would: with CMake, with pkg-config, with
# the linker of another compiler, on the command line, and with the completion of a shell. Then builds the sources as a
# part of another project.
# check_install.sh BUILD_FOLDER EXAMPLES_FOLDER COMPILER EMULATOR|"" CMAKE [CMAKE_ARGUMENT...]
set -euo pipefail
build=$1 examples=$2 compiler=$3 emulator=$4 cmake=$5
shift 5
work=$build/install-check prefix=$build/install-check/moved share=$build/install-check/moved/share
here=$(dirname "$(readlink -f "$0")")

# expect TEXT COMMAND...: fails unless the output of the command contains the text.
expect() {
  local text=$1 output
  shift
  output=$("$@") || { echo "$* ended with $?: $output" >&2; exit 1; }
  [[ $output == *"$text"* ]] || { echo "$*: no '$text' in: $output" >&2; exit 1; }
  echo "$text"
}

run() { if [ -n "$emulator" ]; then "$emulator" "$1.exe" "${@:2}"; else "$@"; fi; }

# run_project FOLDER PROJECT [CMAKE_ARGUMENT...]
run_project() {
  "$cmake" -S "$examples/$2" -B "$work/$1" -G Ninja "${@:3}" >/dev/null
  "$cmake" --build "$work/$1" >/dev/null
  "$cmake" --build "$work/$1" --target run_consumer
}

through_cmake() { run_project cmake consumer -DCMAKE_PREFIX_PATH="$prefix" "$@"; }

# CMake before version 3.23 has no sets of headers, and skips their commands in the exported files.
through_old_cmake() {
  cp -r "$prefix" "$work/old"
  sed -i '/^if(NOT CMAKE_VERSION VERSION_LESS "3.23.0")$/,/^endif()$/d' "$work/old/lib/cmake/qamc5032/qamc5032Targets.cmake"
  ! grep -r FILE_SET "$work/old/lib/cmake" || return
  run_project old-cmake consumer -DCMAKE_PREFIX_PATH="$work/old" "$@"
}

# sources_through FETCHCONTENT [CMAKE_ARGUMENT...]: both ways use the same folder, so that the library is built once.
sources_through() {
  run_project sources consumer_of_sources -DUSE_FETCHCONTENT="$1" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG= \
    -DVEL_PRECOMPILE_HEADERS=ON -DVEL_JOIN_SOURCES=ON \
    -DCMAKE_PROJECT_consumer_INCLUDE="$here/check_leaks.cmake" "${@:2}"
}

installed_by_sources() {
  "$cmake" --install "$work/sources" --prefix "$work/by-sources" >/dev/null
  echo "<$(ls "$work/by-sources" 2>/dev/null)>"
}

pkg_config() { PKG_CONFIG_LIBDIR=$1/lib/pkgconfig pkg-config "${@:2}" qamc5032; }

through_pkg_config() {
  local flags
  read -ra flags < <(pkg_config "$prefix" --define-prefix --cflags --libs)
  mkdir "$work/pkg-config"
  "$compiler" -std=c++20 "$examples/greet.cpp" "${flags[@]}" -o "$work/pkg-config/greet"
  # Windows finds a DLL in the directory of the program.
  if [ -n "$emulator" ]; then cp "$(pkg_config "$prefix" --variable=bindir)"/*.[dD][lL][lL] "$work/pkg-config"; fi
  LD_LIBRARY_PATH=$(pkg_config "$prefix" --define-prefix --variable=libdir) run "$work/pkg-config/greet" -name pkg-config
}

# Links without a C runtime, because such a compiler uses only the headers and the import library of the installation.
through_other_linker() {
  local program=$work/pkg-config/plain
  printf '#include <vel_c.h>\nint start(void) { return velMatchesWildcardPattern("*.INI", "tool.ini", false) ? 0 : 9; }\n' \
    >"$program.c"
  clang --target=x86_64-pc-windows-msvc -ffreestanding -I"$prefix/include/qamc5032" -c "$program.c" -o "$program.obj"
  lld-link -nologo -nodefaultlib -entry:start -subsystem:console "$program.obj" "$prefix/lib/qamc5032.lib" -out:"$program.exe"
  run "$program" && echo "linked and ran"
}

# complete_line WORD...: prints the completions that bash offers for the last word.
complete_line() {
  local COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY
  source "$share/bash-completion/completions/$1"
  "_$1"
  echo "<${COMPREPLY[*]}>"
}

# These two print the completions that the other shells offer at the end of a line.
complete_in_fish() {
  HOME=$work fish -N -c "source '$share/fish/vendor_completions.d/${1%% *}.fish'; complete -C '$1'" | cut -f1 | xargs -d '\n'
}
complete_in_zsh() { zsh -f "$here/complete.zsh" "$share/zsh/site-functions" "$1" | xargs -d '\n'; }

man_page_warnings() { echo "<$(groff -man -ww -z -Tutf8 "$share"/man/man1/*.1 2>&1)>"; }

# The pages of the tools, whose completions call the tools.
completions_of_tools() {
  expect "<-delete -delsection>" complete_line velini -section one -del
  expect "<>" complete_line velini -section d
  expect "<$prefix/include>" complete_line veldump "$prefix/inc"
  expect "<stop skip replace escape>" complete_line velconv -policy ""
  printf '[One]\na = 1\n[Two Words]\nbest = 2\n' >"$work/some.ini"
  local PATH=$prefix/bin:$PATH file=$work/some.ini shell
  expect "<Two\\ Words>" complete_line velini -file "$file" -section T
  expect "<best>" complete_line velini -file "$file" -section "Two\\ Words" -get ""
  expect "<819>" complete_line velconv -from 819
  expect "<latin1>" complete_line velconv -from latin1
  for shell in fish zsh; do
    expect "One Two Words" "complete_in_$shell" "velini -file $file -section "
    expect "best" "complete_in_$shell" "velini -file $file -section \"Two Words\" -get b"
    expect "plain shell" "complete_in_$shell" "velini -format "
  done
}

# The catalogs that the project of a user makes and installs.
catalogs_of_programs() {
  local programs=$work/cmake
  expect $'1031\t8\n1033\t8' run "$prefix/bin/velmsg" -cat "$programs/import_records.DLL" -langs
  expect $'1031\t8' run "$prefix/bin/velmsg" -cat "$programs/greet.DLL" -langs
  expect "#ifndef IMPORT_RECORDS_IDS_H_" cat "$programs/import_records_catalogs/import_records_ids.h"
  "$cmake" --install "$programs" --prefix "$work/catalogs" >/dev/null
  cmp "$programs/import_records.DLL" "$work/catalogs/bin/import_records.DLL"
}

# With this locale the code page is 1252 without the manifest.
manifest_of_programs() {
  grep -aq 'UTF-8</activeCodePage>' "$work/cmake/consumer.exe" || return
  LC_ALL=C.UTF-8 run "$work/cmake/consumer" -name пример
}

# The pages that the project of a user generates and installs.
pages_of_programs() {
  "$cmake" --install "$work/cmake" --prefix "$work/programs" >/dev/null
  local share=$work/programs/share shell
  expect "<--format>" complete_line topwords --fo
  expect "<text tsv>" complete_line topwords --format = ""
  expect "<-top>" complete_line topwords -t
  expect "<auto always>" complete_line topwords x -color a
  expect "<$prefix/include>" complete_line topwords -- "$prefix/inc"
  expect "<-name -times -h -quiet -copyright>" complete_line greet -
  for shell in fish zsh; do
    expect "text tsv" "complete_in_$shell" "topwords -format "
    expect "10 20 50" "complete_in_$shell" "topwords --top "
  done
  expect "-copyright" complete_in_fish "greet -c"
  expect "'-format', '--format' } { 'text', 'tsv'; break }" cat "$share/powershell/completions/topwords.ps1"
  expect "how many words to print; the default is 10" cat "$share/man/man1/topwords.1"
  expect "greet \\-name Ada \\-times 2" cat "$share/man/man1/greet.1"
  expect "<>" man_page_warnings
}

rm -rf "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >/dev/null
if [ -z "$emulator" ]; then
  expect "-I$work/prefix/include/qamc5032 -L$work/prefix/lib -lqamc5032" pkg_config "$work/prefix" --cflags --libs
fi
mv "$work/prefix" "$prefix"
expect "Hello, installed!" through_cmake "$@"
expect "Hello, installed!" through_old_cmake "$@"
expect "Hello, pkg-config!" through_pkg_config
expect "1033" run "$prefix/bin/velmsg" -cat qammsg50.DLL -langs
catalogs_of_programs
pages_of_programs
if [ -n "$emulator" ]; then
  expect "Hello, пример!" manifest_of_programs
  expect "linked and ran" through_other_linker
else
  completions_of_tools
  expect "<>" man_page_warnings
  expect "Hello, sources!" sources_through OFF "$@"
  expect "Hello, sources!" sources_through ON "$@"
  expect "<>" installed_by_sources
fi

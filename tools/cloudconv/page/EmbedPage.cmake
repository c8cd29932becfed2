# Makes a C++ source file of a page's HTML, CSS and JavaScript. Run at build time:
#
#   cmake -D NAME=drawing -D OUTPUT=DrawingPageSource.cpp -D BODY=drawing.html -D STYLES=a.css|b.css
#         -D MODULES=a.js|b.js -P EmbedPage.cmake
#
# The modules become one script in their order: what they import and export they then share. The
# hashes are those that the page's content security policy lets run.
cmake_minimum_required(VERSION 3.25)

# The base64 of a hexadecimal number of 64 digits, with one "=" behind.
function(base64_of_sha256 hex result)
  set(letters "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(text "")
  # Three bytes are four letters; the last three bytes are two and a zero.
  foreach(begin RANGE 0 60 6)
    string(SUBSTRING "${hex}00" ${begin} 6 three_bytes)
    foreach(shift IN ITEMS 18 12 6 0)
      math(EXPR letter "(0x${three_bytes} >> ${shift}) & 63")
      string(SUBSTRING "${letters}" ${letter} 1 letter)
      string(APPEND text "${letter}")
    endforeach()
  endforeach()
  string(SUBSTRING "${text}" 0 43 text)
  set(${result} "${text}=" PARENT_SCOPE)
endfunction()

# Appends a text to the C++ expression of a string. Pieces stay below what compilers must take.
function(append_literal expression text)
  string(LENGTH "${text}" length)
  if(length GREATER 60000 OR text MATCHES "\\)embedded\"")
    message(FATAL_ERROR "a file of a page is too long, or has what ends it in C++")
  endif()
  set(${expression} "${${expression}}\n    text += R\"embedded(${text})embedded\";" PARENT_SCOPE)
endfunction()

string(REPLACE "|" ";" STYLES "${STYLES}")
string(REPLACE "|" ";" MODULES "${MODULES}")

set(style "")
set(style_code "")
foreach(file IN LISTS STYLES)
  file(READ "${file}" text)
  string(APPEND style "${text}")
  append_literal(style_code "${text}")
endforeach()

set(script "\"use strict\";\n(() => {\n")
set(script_code "")
append_literal(script_code "${script}")
foreach(file IN LISTS MODULES)
  file(READ "${file}" text)
  string(REGEX REPLACE "(^|\n)import [^;]*;" "\\1" text "${text}")
  string(REGEX REPLACE "(^|\n)export " "\\1" text "${text}")
  string(APPEND script "${text}")
  append_literal(script_code "${text}")
endforeach()
set(text "})();\n")
string(APPEND script "${text}")
append_literal(script_code "${text}")
if(script MATCHES "</[sS][cC][rR][iI][pP][tT]|<!--" OR style MATCHES "</[sS][tT][yY][lL][eE]")
  message(FATAL_ERROR "a file of a page has what ends its element in HTML")
endif()

file(READ "${BODY}" text)
set(body_code "")
append_literal(body_code "${text}")
string(SHA256 style_hash "${style}")
string(SHA256 script_hash "${script}")
base64_of_sha256("${style_hash}" style_hash)
base64_of_sha256("${script_hash}" script_hash)

file(WRITE "${OUTPUT}.new" "// Made by EmbedPage.cmake.
#include \"tools/cloudconv/page/PageSource.h\"

namespace {

std::string body() {
    std::string text;${body_code}
    return text;
}

std::string style() {
    std::string text;${style_code}
    return text;
}

std::string script() {
    std::string text;${script_code}
    return text;
}

} // namespace

PageSource ${NAME}PageSource() {
    return {body(), style(), \"${style_hash}\", script(), \"${script_hash}\"};
}
")
file(RENAME "${OUTPUT}.new" "${OUTPUT}")

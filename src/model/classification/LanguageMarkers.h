#pragma once

#include <array>
#include <string_view>

/// Pieces of text that tell a programming language. They are looked for anywhere in a text, inside words too,
/// so most of them end with a blank or a bracket. Case-sensitive, but for those of SQL, which are looked for
/// in the upper-cased text. ASCII only.
namespace stavelin::model::classification {

inline constexpr auto typeScriptMarkers = std::to_array<std::string_view>(
    {": string", ": number", ": boolean", "interface ", ": Promise<", "<T>", "as const", ": void"});

inline constexpr auto javaScriptMarkers =
    std::to_array<std::string_view>({"const ", "let ", "var ", "=> ", "function ", "async ", "await ",
                                     "import ", "export ", "require(", "module.exports", "console.log"});

inline constexpr auto pythonMarkers =
    std::to_array<std::string_view>({"def ", "class ", "import ", "from ", "if __name__", "self.", "print(",
                                     "elif ", "except:", "lambda ", "async def", "await "});

inline constexpr auto swiftMarkers = std::to_array<std::string_view>(
    {"func ", "var ", "let ", "guard ", "if let ", "struct ", "enum ", "@State", "@Binding", "@Published",
     "@Observable", "some View", "-> Void", "-> Bool", "-> String", "-> Int", "?."});

inline constexpr auto rustMarkers =
    std::to_array<std::string_view>({"fn ", "let mut ", "impl ", "pub fn", "pub struct", "pub enum",
                                     "-> Result<", "-> Option<", "&self", "&mut ", "::new()", "unwrap()"});

inline constexpr auto goMarkers =
    std::to_array<std::string_view>({"func ", "package ", "import (", "type ", "go func", "defer ", "make(",
                                     "range ", ":= ", "interface{}", "err != nil"});

inline constexpr auto kotlinMarkers = std::to_array<std::string_view>(
    {"fun ", "val ", "var ", "data class", "suspend fun", "?: ", "?.let", "object ", "companion object"});

inline constexpr auto javaMarkers =
    std::to_array<std::string_view>({"public class", "private ", "protected ", "public static void main",
                                     "System.out", "@Override", "new ", "ArrayList<", "HashMap<"});

inline constexpr auto cPlusPlusMarkers =
    std::to_array<std::string_view>({"std::", "cout <<", "cin >>", "template<", "class ", "namespace ",
                                     "vector<", "string ", "nullptr", "auto "});

inline constexpr auto cMarkers = std::to_array<std::string_view>(
    {"#include", "int main", "printf(", "malloc(", "free(", "sizeof(", "NULL", "void *", "char *", "int *"});

inline constexpr auto rubyMarkers =
    std::to_array<std::string_view>({"def ", "end", "puts ", "require ", "attr_", "class ", "module ", "do |",
                                     ".each ", ".map ", "nil", "#{"});

inline constexpr auto htmlMarkers =
    std::to_array<std::string_view>({"<html", "<div", "<span", "<p>", "<head", "<body", "<!DOCTYPE",
                                     "<script", "<style", "<link", "<meta", "</"});

inline constexpr auto cssMarkers =
    std::to_array<std::string_view>({"display:", "margin:", "padding:", "color:", "background:", "font-size:",
                                     "border:", "flex:", "grid:", "@media"});

inline constexpr auto yamlMarkers = std::to_array<std::string_view>({"---", "- ", ": |", ": >", "  - "});

inline constexpr auto sqlMarkers =
    std::to_array<std::string_view>({"SELECT ", "INSERT ", "UPDATE ", "DELETE ", "CREATE TABLE", "DROP TABLE",
                                     "ALTER TABLE", "FROM ", "WHERE ", "JOIN ", "ORDER BY"});

inline constexpr auto shellMarkers =
    std::to_array<std::string_view>({"#!/bin/bash", "#!/bin/sh", "#!/bin/zsh", "echo ", "export ", "if [",
                                     "then", "fi", "for ", "done", "while ", "case "});

} // namespace stavelin::model::classification

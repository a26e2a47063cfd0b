#pragma once

#include <cstdint>

namespace stavelin::model::classification {

/// What the search for markers can find in a text: signs of a language, and what the rules ask for besides.
enum class TextTrait : std::uint8_t {
    typeScript,
    javaScript,
    python,
    swift,
    rust,
    go,
    kotlin,
    java,
    cPlusPlus,
    c,
    ruby,
    html,
    css,
    yaml,
    sql,
    shell,
    colon,
    semicolon,
    openingBrace,
    closingBrace,
    fourBlanks,
    braceAfterColon,  ///< ":{" or ": {", as in a Python dictionary
    swiftDeclaration, ///< what Swift shares with hardly any other language
    goDeclaration,    ///< what a Go text is hardly ever without
    foreignToGo,      ///< what Swift has and Go has not
    end,              ///< "end", which closes a Ruby block
    rubyBlock         ///< what opens a Ruby block
};

} // namespace stavelin::model::classification

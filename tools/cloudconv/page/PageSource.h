#pragma once

#include <string>

/// What a kind of page is made of besides its data. Built from the files in this folder.
struct PageSource {
    /// HTML between <body> and the data.
    std::string body;
    std::string style;
    /// SHA-256 in base64, as content security policies have it.
    std::string styleHash;
    std::string script;
    std::string scriptHash;
};

PageSource drawingPageSource();
PageSource scanPageSource();

// A second reader of LandXML, for tests: it knows the schema's rules as a table, integrates every
// element by itself and shares no code with the reader and writer under test.
#pragma once

#include <string>
#include <vector>

namespace tarvex {

/// What is wrong with the document, a sentence each; empty for a document that any reader of the
/// format takes as the same road. Points are held to 2e-6, stations and lengths to 2e-7.
std::vector<std::string> FaultsOfLandXml(const std::string& text);

}  // namespace tarvex

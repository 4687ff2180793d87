#pragma once

#include <string>

// Where the build and the sources are, for tests. In functions, so that one compilation of a test serves
// every checkout.
namespace forgeyard::places {

std::string programs();  // the programs and the module of this build
std::string golden();    // reference data of this project; tests of readers let FORGEYARD_GOLDEN replace it
std::string samples();   // the sample projects
std::string docs();
std::string sources();         // the root of the sources
std::string build();           // the root of the build
std::string cmake();           // the program that has configured it
std::string storageSamples();  // compound files of other writers
std::string scriptedTool();    // a tool that does what its arguments say
std::string spawnerTools();    // the directory of the tools that the spawner's tests run
std::string watchpost();       // a diagnostics module that writes down what it is told

}  // namespace forgeyard::places

// Drawings in memory for tests that need a project.
#pragma once

#include <memory>
#include <string>

#include "memhost/document.h"

namespace kestrana::test {

// A drawing whose model space carries a bare project record: no networks,
// active view style "Standard", events on, the given units, version "2.00".
std::unique_ptr<memhost::MemDocument> NewProjectDocument(
    const std::string& units = "Metric");

// Writes that bare project record to any drawing.
void WriteBareProjectRecord(host::Document& document,
                            const std::string& units = "Metric",
                            const std::string& version = "2.00");

// A small drawing for reading and writing files: a three-field project
// record, a pipe with a short record on the locked layer "Sewer - Network"
// and two lines there.
std::unique_ptr<memhost::MemDocument> SampleDrawing();

}  // namespace kestrana::test

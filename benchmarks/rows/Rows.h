#pragma once

#include "harness/Context.h"

// The rows of the table, each in the file of its name. A row measures its work in processes of its own, so that memory
// and processor time are that work's alone, and in turn with the program beside it.
namespace Rows {

std::vector<Bench::Row> conversion(const Bench::Context& context);       // 1 and 2
std::vector<Bench::Row> uploads(const Bench::Context& context);          // 3
std::vector<Bench::Row> delivery(const Bench::Context& context);         // 4
std::vector<Bench::Row> unpacking(const Bench::Context& context);        // 5
std::vector<Bench::Row> statusReply(const Bench::Context& context);      // 6
std::vector<Bench::Row> start(const Bench::Context& context);            // 7
std::vector<Bench::Row> jobList(const Bench::Context& context);          // 8
std::vector<Bench::Row> heartbeat(const Bench::Context& context);        // 9
std::vector<Bench::Row> transcriptParser(const Bench::Context& context); // 10
std::vector<Bench::Row> wholeRoad(const Bench::Context& context);        // 11

} // namespace Rows

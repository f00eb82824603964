#include "rows/Rows.h"

std::vector<Bench::Row> Rows::transcriptParser(const Bench::Context& /*context*/)
{
    return {};
}

#pragma once
#include <cstdint>
#include <vector>

#include "markup/document_tree.h"
#include "markup/markup_parser.h"

namespace orvelan::testing {

// Offsets of every E record, in arena order.
std::vector<uint32_t> ElementRecords(const DocumentTree& tree);

// `retained` (parsed with FeedRetained) keeps the same text, positions and
// tree as `copied`: every element's markup and contents cut the same bytes,
// and with `every_range` so does every [begin, end) up to past the end.
void ExpectSameKeptText(MarkupParser& copied, MarkupParser& retained, bool every_range);

}  // namespace orvelan::testing

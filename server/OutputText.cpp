#include "server/OutputText.h"

#include <algorithm>

namespace harbrook {

void OutputText::append(std::string_view text) {
    size_ += text.size();
    while (!text.empty()) {
        if (blocks_.empty() || blocks_.back().size() == blockSize) blocks_.emplace_back().reserve(blockSize);
        auto& block = blocks_.back();
        const auto piece = text.substr(0, std::min(text.size(), blockSize - block.size()));
        block += piece;
        text.remove_prefix(piece.size());
    }
}

std::string OutputText::string() const {
    std::string whole;
    whole.reserve(size_);
    for (const auto& block : blocks_)
        whole += block;
    return whole;
}

} // namespace harbrook

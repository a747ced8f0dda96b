#pragma once

#include <span>
#include <string>
#include <vector>

#include "studio/scene/gltf/document.h"

namespace tavora::studio::gltf {

/// A member of a document that animations can move. It points into the document,
/// whose lists must keep their sizes while it is used.
struct MemberRef {
    std::span<double> numbers;            ///< for one number or a fixed count of them
    bool* flag = nullptr;                 ///< for true or false
    std::vector<double>* list = nullptr;  ///< for morph weights, which may be absent

    bool exists() const { return !numbers.empty() || flag != nullptr || list != nullptr; }
};

/// The member that a pointer names, by the table of rules by which documents are
/// read; none (MemberRef::exists) for one that is not read, not there or no number.
MemberRef memberAt(Document& document, const Pointer& pointer);

}  // namespace tavora::studio::gltf

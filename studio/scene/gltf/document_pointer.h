#pragma once

#include <span>
#include <string>
#include <vector>

#include "studio/scene/gltf/document.h"

namespace tavora::studio::gltf {

/// A member of a document that can be animated. At most one of the three is set. It points
/// into the document, whose lists must keep their sizes while it is used.
struct MemberRef {
    std::span<double> numbers;            ///< a number or a fixed count of them
    bool* flag = nullptr;                 ///< true or false
    std::vector<double>* list = nullptr;  ///< morph weights, which may be absent in the file

    bool exists() const { return !numbers.empty() || flag != nullptr || list != nullptr; }
};

/// Finds the member that a pointer names, by the rules in document_rules.h. The result does
/// not exist() when the member is absent, not read, or of a type that cannot be animated.
MemberRef memberAt(Document& document, const Pointer& pointer);

}  // namespace tavora::studio::gltf

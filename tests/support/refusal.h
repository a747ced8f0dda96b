#pragma once

#include <string>

#include "studio/util/error.h"

namespace tavora::studio {

/// The message of the Error that `body` throws; empty when it throws none.
template <class Body>
std::string refusal(const Body& body) {
    try {
        body();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace tavora::studio

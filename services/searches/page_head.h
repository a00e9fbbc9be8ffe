#pragma once

#include <string>
#include <string_view>

#include "text/languages.h"

namespace quarrynet::services {

/// Returns a page up to the beginning of its body. `title` is an own text in English; `style` is CSS.
std::string pageHead(std::string_view title, Language language, std::string_view style);

/// Returns the button that submits a search form.
std::string submitButton(Language language);

} // namespace quarrynet::services

// Blank-padded texts: names, keywords and paths stand in fixed-width fields filled with blanks.
#pragma once

#include <string_view>

// The text without the blanks that pad it on the right.
inline std::string_view trimRight(std::string_view s) {
  const size_t end = s.find_last_not_of(' ');
  return end == std::string_view::npos ? std::string_view{} : s.substr(0, end + 1);
}

// The text without blanks on either side.
inline std::string_view trimBlanks(std::string_view s) {
  const size_t begin = s.find_first_not_of(' ');
  return begin == std::string_view::npos ? std::string_view{} : trimRight(s.substr(begin));
}

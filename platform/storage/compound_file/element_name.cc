#include "platform/storage/compound_file/element_name.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "platform/storage/compound_file/compound_format.h"

namespace forgeyard::compound {
namespace {

// Lower-case units from `first` to `last`, every `step`-th of them, and what to add for their upper case. The
// letters are those of Unicode 3.2: writers of the format froze their tables at about that time, and an order
// that knew later letters would differ from theirs.
struct LowerRange {
  char16_t first;
  char16_t last;
  std::int16_t toUpper;
  std::uint8_t step;
};

constexpr LowerRange kLower[] = {
    {0x0061, 0x007A, -32, 1},  {0x00B5, 0x00B5, 743, 1},  {0x00E0, 0x00F6, -32, 1},
    {0x00F8, 0x00FE, -32, 1},  {0x00FF, 0x00FF, 121, 1},  {0x0101, 0x012F, -1, 2},
    {0x0131, 0x0131, -232, 1}, {0x0133, 0x0137, -1, 2},   {0x013A, 0x0148, -1, 2},
    {0x014B, 0x0177, -1, 2},   {0x017A, 0x017E, -1, 2},   {0x017F, 0x017F, -300, 1},
    {0x0183, 0x0185, -1, 2},   {0x0188, 0x0188, -1, 1},   {0x018C, 0x018C, -1, 1},
    {0x0192, 0x0192, -1, 1},   {0x0195, 0x0195, 97, 1},   {0x0199, 0x0199, -1, 1},
    {0x019E, 0x019E, 130, 1},  {0x01A1, 0x01A5, -1, 2},   {0x01A8, 0x01A8, -1, 1},
    {0x01AD, 0x01AD, -1, 1},   {0x01B0, 0x01B0, -1, 1},   {0x01B4, 0x01B6, -1, 2},
    {0x01B9, 0x01B9, -1, 1},   {0x01BD, 0x01BD, -1, 1},   {0x01BF, 0x01BF, 56, 1},
    {0x01C5, 0x01C5, -1, 1},   {0x01C6, 0x01C6, -2, 1},   {0x01C8, 0x01C8, -1, 1},
    {0x01C9, 0x01C9, -2, 1},   {0x01CB, 0x01CB, -1, 1},   {0x01CC, 0x01CC, -2, 1},
    {0x01CE, 0x01DC, -1, 2},   {0x01DD, 0x01DD, -79, 1},  {0x01DF, 0x01EF, -1, 2},
    {0x01F2, 0x01F2, -1, 1},   {0x01F3, 0x01F3, -2, 1},   {0x01F5, 0x01F5, -1, 1},
    {0x01F9, 0x021F, -1, 2},   {0x0223, 0x0233, -1, 2},   {0x0253, 0x0253, -210, 1},
    {0x0254, 0x0254, -206, 1}, {0x0256, 0x0257, -205, 1}, {0x0259, 0x0259, -202, 1},
    {0x025B, 0x025B, -203, 1}, {0x0260, 0x0260, -205, 1}, {0x0263, 0x0263, -207, 1},
    {0x0268, 0x0268, -209, 1}, {0x0269, 0x0269, -211, 1}, {0x026F, 0x026F, -211, 1},
    {0x0272, 0x0272, -213, 1}, {0x0275, 0x0275, -214, 1}, {0x0280, 0x0280, -218, 1},
    {0x0283, 0x0283, -218, 1}, {0x0288, 0x0288, -218, 1}, {0x028A, 0x028B, -217, 1},
    {0x0292, 0x0292, -219, 1}, {0x0345, 0x0345, 84, 1},   {0x03AC, 0x03AC, -38, 1},
    {0x03AD, 0x03AF, -37, 1},  {0x03B1, 0x03C1, -32, 1},  {0x03C2, 0x03C2, -31, 1},
    {0x03C3, 0x03CB, -32, 1},  {0x03CC, 0x03CC, -64, 1},  {0x03CD, 0x03CE, -63, 1},
    {0x03D0, 0x03D0, -62, 1},  {0x03D1, 0x03D1, -57, 1},  {0x03D5, 0x03D5, -47, 1},
    {0x03D6, 0x03D6, -54, 1},  {0x03D9, 0x03EF, -1, 2},   {0x03F0, 0x03F0, -86, 1},
    {0x03F1, 0x03F1, -80, 1},  {0x03F5, 0x03F5, -96, 1},  {0x0430, 0x044F, -32, 1},
    {0x0450, 0x045F, -80, 1},  {0x0461, 0x0481, -1, 2},   {0x048B, 0x04BF, -1, 2},
    {0x04C2, 0x04CE, -1, 2},   {0x04D1, 0x04F5, -1, 2},   {0x04F9, 0x04F9, -1, 1},
    {0x0501, 0x050F, -1, 2},   {0x0561, 0x0586, -48, 1},  {0x1E01, 0x1E95, -1, 2},
    {0x1E9B, 0x1E9B, -59, 1},  {0x1EA1, 0x1EF9, -1, 2},   {0x1F00, 0x1F07, 8, 1},
    {0x1F10, 0x1F15, 8, 1},    {0x1F20, 0x1F27, 8, 1},    {0x1F30, 0x1F37, 8, 1},
    {0x1F40, 0x1F45, 8, 1},    {0x1F51, 0x1F57, 8, 2},    {0x1F60, 0x1F67, 8, 1},
    {0x1F70, 0x1F71, 74, 1},   {0x1F72, 0x1F75, 86, 1},   {0x1F76, 0x1F77, 100, 1},
    {0x1F78, 0x1F79, 128, 1},  {0x1F7A, 0x1F7B, 112, 1},  {0x1F7C, 0x1F7D, 126, 1},
    {0x1F80, 0x1F87, 8, 1},    {0x1F90, 0x1F97, 8, 1},    {0x1FA0, 0x1FA7, 8, 1},
    {0x1FB0, 0x1FB1, 8, 1},    {0x1FB3, 0x1FB3, 9, 1},    {0x1FBE, 0x1FBE, -7205, 1},
    {0x1FC3, 0x1FC3, 9, 1},    {0x1FD0, 0x1FD1, 8, 1},    {0x1FE0, 0x1FE1, 8, 1},
    {0x1FE5, 0x1FE5, 7, 1},    {0x1FF3, 0x1FF3, 9, 1},    {0x2170, 0x217F, -16, 1},
    {0x24D0, 0x24E9, -26, 1},  {0xFF41, 0xFF5A, -32, 1},
};

bool isForbidden(char16_t unit) noexcept {
  return unit == u'/' || unit == u'\\' || unit == u':' || unit == u'!' || unit == u'\0';
}

}  // namespace

bool isValidName(std::u16string_view name) noexcept {
  return !name.empty() && name.size() <= kMaxNameUnits && std::none_of(name.begin(), name.end(), isForbidden);
}

char16_t upperCaseUnit(char16_t unit) noexcept {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
  const auto* range = std::lower_bound(std::begin(kLower), std::end(kLower), unit,
                                       [](const LowerRange& r, char16_t u) { return r.last < u; });
  if (range == std::end(kLower) || unit < range->first || (unit - range->first) % range->step != 0)
    return unit;
  return static_cast<char16_t>(unit + range->toUpper);
}

bool DirectoryOrder::operator()(std::u16string_view a, std::u16string_view b) const noexcept {
  if (a.size() != b.size()) return a.size() < b.size();
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) continue;
    const char16_t x = upperCaseUnit(a[i]);
    const char16_t y = upperCaseUnit(b[i]);
    if (x != y) return x < y;
  }
  return false;
}

bool sameName(std::u16string_view a, std::u16string_view b) noexcept {
  const DirectoryOrder before;
  return a.size() == b.size() && !before(a, b) && !before(b, a);
}

}  // namespace forgeyard::compound

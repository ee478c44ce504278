#include "update/VersionOrder.h"

#include <algorithm>

namespace tallyglass {

namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// Cuts the digits off the front of a text and gives them without their leading zeros.
QStringView takeNumber(QStringView &text)
{
    const auto *const end = std::ranges::find_if_not(text, isDigit);
    const auto *const start =
        std::find_if(text.begin(), end, [](QChar digit) { return digit != u'0'; });
    const QStringView number(start, end);
    text = QStringView(end, text.end());
    return number;
}

} // namespace

std::weak_ordering compareVersions(QStringView left, QStringView right)
{
    while (!left.isEmpty() && !right.isEmpty()) {
        if (isDigit(left.front()) && isDigit(right.front())) {
            const QStringView number = takeNumber(left);
            const QStringView other = takeNumber(right);
            // Without leading zeros the longer one is the larger, so no digits overflow.
            const auto order = number.size() <=> other.size();
            if (order != 0 || number != other)
                return order != 0 ? order : number.compare(other) <=> 0;
        } else if (left.front() != right.front()) {
            return left.front().unicode() <=> right.front().unicode();
        } else {
            left = left.sliced(1);
            right = right.sliced(1);
        }
    }
    return left.size() <=> right.size();
}

} // namespace tallyglass

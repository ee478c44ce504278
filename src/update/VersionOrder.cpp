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

/// Without leading zeros the longer number is the larger one, so no digits overflow.
std::weak_ordering compareNumbers(QStringView left, QStringView right)
{
    if (left.size() != right.size())
        return left.size() <=> right.size();
    return left.compare(right) <=> 0;
}

} // namespace

std::weak_ordering compareVersions(QStringView left, QStringView right)
{
    while (!left.isEmpty() && !right.isEmpty()) {
        if (isDigit(left.front()) && isDigit(right.front())) {
            const auto order = compareNumbers(takeNumber(left), takeNumber(right));
            if (order != 0)
                return order;
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

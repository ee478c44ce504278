#include "services/JsonNumbers.h"

#include <cmath>

namespace tallyglass {

std::optional<double> numberFrom(const QJsonValue &value)
{
    bool ok = value.isDouble();
    const double number = ok ? value.toDouble() : value.toString().toDouble(&ok);
    return ok && std::isfinite(number) ? std::optional{number} : std::nullopt;
}

} // namespace tallyglass

#pragma once

#include <QString>

// The maker's identity, as printed on exports and shown in the about panel. The distributor
// supplies these values; they live here only.
namespace Brand {
inline QString productName() { return QStringLiteral("Kairon"); }
inline QString companyName() { return QStringLiteral("Orv Audiovisual"); }
inline QString webAddress() { return QStringLiteral("www.orv-audiovisual.fr"); }
} // namespace Brand

#pragma once

#include <QString>

namespace Sealkit::Internal {

struct KeyGenerationData;

/// Why \a request must not be made, in a text for the user: a field is empty, openssl would change
/// the company name, or a private key would be overwritten. Empty when the request can be made.
QString whyNoRequest(const KeyGenerationData &request);

} // namespace Sealkit::Internal

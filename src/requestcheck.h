#pragma once

#include <QString>

namespace Sealkit::Internal {

struct KeyGenerationData;

/// Why \a request is not to be made, in a text for the user: a field is empty, openssl would change
/// the company name, or a private key would be lost. Empty when it can be made.
QString whyNoRequest(const KeyGenerationData &request);

} // namespace Sealkit::Internal

#pragma once

#include <QString>

/// The General Messages of the application.
namespace Core::MessageManager {

void writeSilently(const QString &message);
/// Also brings the messages to the user's eyes.
void writeDisrupting(const QString &message);

} // namespace Core::MessageManager

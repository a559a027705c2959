#pragma once

#include <QString>

namespace snaplift {

// Has the desktop tell something to a user who looks at another window: through the notification
// service of the session bus (org.freedesktop.Notifications). Returns at once; where no service
// answers, nothing comes of it. The text is plain.
void notifyDesktop(const QString& text);

}  // namespace snaplift

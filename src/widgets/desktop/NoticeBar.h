#pragma once

#include <QFrame>
#include <QString>
#include <functional>
#include <vector>

class QBoxLayout;
class QLabel;

namespace snaplift {

// A button of a notice, and what it does.
struct NoticeAction {
  QString text;
  std::function<void()> chosen;
  bool closes = true;  // the notice has done its duty then
};

// A line over a view that tells what came of something, with buttons to go on from there. It stands
// in nobody's way: nothing waits for it, Escape closes it wherever the focus is in its window, and
// the next notice takes its place. Hidden until there is something to tell.
class NoticeBar : public QFrame {
  Q_OBJECT

public:
  explicit NoticeBar(QWidget* parent = nullptr);

  // The text is plain. A screen reader reads it out.
  void tell(const QString& text, const std::vector<NoticeAction>& actions = {});

private:
  void add(const NoticeAction& action);

  QBoxLayout* m_layout;
  QLabel* m_text;
  QWidget* m_buttons = nullptr;
};

}  // namespace snaplift

#pragma once

#include <QColor>
#include <QPointF>
#include <QTimer>
#include <QWidget>

class QPainter;

namespace snaplift {

// The spinner that says "at work": twelve spokes, the brightest leading clockwise and the others
// fading behind it.
struct ActivitySpokes {
  static constexpr int count = 12;  // and steps in a turn
  float innerRadius = 4.32f;        // from the centre; of a spinner of 16 by 16
  float outerRadius = 7.68f;
  float lineWidth = 1.28f;

  // At step 0 the leading spoke points up; each step turns it by 30 degrees.
  void draw(QPainter& painter, const QPointF& centre, int step, const QColor& color) const;
};

// A spinner as a widget of 16 by 16, hidden while there is no work, so that screen readers do not
// meet it; its place stays free. It turns once a second in the text colour of its palette and costs
// nothing while it, or its window, is hidden. The user interface's thread only.
class ActivityIndicator : public QWidget {
  Q_OBJECT

public:
  explicit ActivityIndicator(QWidget* parent = nullptr);

  bool isAnimating() const { return !isHidden(); }
  // Both may be called in any state.
  void startAnimation();
  void stopAnimation();

  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

private:
  QTimer m_timer{this};
  int m_step = 0;
};

}  // namespace snaplift

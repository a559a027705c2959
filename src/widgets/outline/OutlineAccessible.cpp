#include "widgets/outline/OutlineAccessible.h"

#include <QAccessibleWidget>
#include <QWindow>
#include <unordered_map>
#include <utility>

#include "widgets/outline/OutlineView.h"

namespace snaplift::outlineAccessible {
namespace {

using Node = OutlineModel::Node;

void send(QAccessibleInterface* interface, QAccessible::Event type) {
  if (interface) {
    QAccessibleEvent event(interface, type);
    QAccessible::updateAccessibility(&event);
  }
}

void sendStateChange(QAccessibleInterface* interface, const QAccessible::State& changed) {
  if (interface) {
    QAccessibleStateChangeEvent event(interface, changed);
    QAccessible::updateAccessibility(&event);
  }
}

// The interfaces of a view's rows.
class Rows {
public:
  explicit Rows(OutlineView& owner) : view(owner) {}
  ~Rows() { clear(); }

  QAccessibleInterface* of(Node& node);
  // nullptr where there is no such item.
  QAccessibleInterface* ofItem(OutlineItem item) {
    Node* node = view.outlineModel().nodeForItem(item);
    return node ? of(*node) : nullptr;
  }
  QAccessibleInterface* ofRow(int row) { return ofItem(view.itemAtRow(row)); }
  void clear() {
    for (const auto& [node, id] : std::exchange(m_ids, {})) {
      QAccessible::deleteAccessibleInterface(id);
    }
  }

  OutlineView& view;

private:
  std::unordered_map<Node*, QAccessible::Id> m_ids;
};

class RowInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
  RowInterface(Rows& rows, Node& node) : m_rows(rows), m_view(rows.view), m_node(node) {}

  bool isValid() const override { return true; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return m_view.window()->windowHandle(); }

  QAccessibleInterface* parent() const override {
    return m_node.parent->parent ? m_rows.of(*m_node.parent)
                                 : QAccessible::queryAccessibleInterface(&m_view);
  }
  int childCount() const override {
    return isExpanded() ? static_cast<int>(m_view.outlineModel().children(m_node).size()) : 0;
  }
  QAccessibleInterface* child(int index) const override {
    return index >= 0 && index < childCount()
               ? m_rows.of(m_node.children[static_cast<std::size_t>(index)])
               : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto* row = dynamic_cast<const RowInterface*>(child);
    return row && row->m_node.parent == &m_node ? row->m_node.position : -1;
  }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int position() const { return m_node.position; }
  bool isTopLevel() const { return m_node.level == 0; }

  QString text(QAccessible::Text text) const override {
    switch (text) {
      case QAccessible::Name:
        return m_view.titleOfItem(m_node.item);
      case QAccessible::Description:
        return m_view.descriptionOfRow(row()).text;
      default:
        return {};
    }
  }
  void setText(QAccessible::Text, const QString&) override {}

  QRect rect() const override {
    const QRect rect = m_view.visualRect(m_view.outlineModel().index(m_node));
    return rect.isEmpty() ? rect
                          : QRect(m_view.viewport()->mapToGlobal(rect.topLeft()), rect.size());
  }
  QAccessible::Role role() const override { return QAccessible::TreeItem; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.disabled = !m_view.isEnabled();
    state.invisible = row() < 0;
    state.offscreen = !m_view.viewport()->rect().intersects(
        m_view.visualRect(m_view.outlineModel().index(m_node)));
    state.selectable = m_view.mayProposeRow(row());
    state.selected = m_view.isRowSelected(row());
    state.focusable = true;
    state.focused = m_view.hasFocus() && m_view.focusedRow() == row();
    state.expandable = m_view.outlineModel().isExpandable(m_node);
    state.expanded = state.expandable && isExpanded();
    state.collapsed = state.expandable && !isExpanded();
    state.busy = m_view.descriptionOfRow(row()).busy;
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
  }
  QStringList actionNames() const override {
    QStringList names;
    if (m_view.mayProposeRow(row())) {
      names << pressAction();
    }
    if (m_view.outlineModel().isExpandable(m_node)) {
      names << toggleAction();
    }
    return names << setFocusAction() << showMenuAction();
  }
  void doAction(const QString& name) override {
    if (name == pressAction()) {
      m_view.proposeSelection({row()});
    } else if (name == toggleAction()) {
      m_view.toggleItem(m_node.item);
    } else if (name == setFocusAction() || name == showMenuAction()) {
      m_view.setFocus(Qt::OtherFocusReason);
      m_view.focusRow(row());
      if (name == showMenuAction()) {
        m_view.showMenuOfFocusedRow();
      }
    }
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
  Rows& m_rows;
  OutlineView& m_view;
  Node& m_node;

  int row() const {
    m_view.numberOfRows();  // numbers the rows anew if they have changed
    return m_node.row;
  }
  bool isExpanded() const { return m_view.isItemExpanded(m_node.item); }
};

QAccessibleInterface* Rows::of(Node& node) {
  const auto known = m_ids.find(&node);
  if (known != m_ids.end()) {
    return QAccessible::accessibleInterface(known->second);
  }
  auto* interface = new RowInterface(*this, node);  // Qt's table of interfaces owns it
  m_ids.emplace(&node, QAccessible::registerAccessibleInterface(interface));
  return interface;
}

class TreeInterface : public QAccessibleWidget {
public:
  explicit TreeInterface(OutlineView& view)
      : QAccessibleWidget(&view, QAccessible::Tree), m_view(view), m_rows(view) {
    const auto whenActive = [this](auto signal, auto announce) {
      QObject::connect(&m_view, signal, &m_listening, [announce](auto... of) {
        if (QAccessible::isActive()) {
          announce(of...);
        }
      });
    };
    QObject::connect(&view, &OutlineView::rowsForgotten, &m_listening, [this] { m_rows.clear(); });
    whenActive(&OutlineView::focusMoved, [this] {
      if (m_view.hasFocus()) {
        send(m_rows.ofRow(m_view.focusedRow()), QAccessible::Focus);
      }
    });
    whenActive(&OutlineView::rowsSelected, [this] {
      send(m_rows.ofRow(m_view.selectedRow()), QAccessible::Selection);
      send(this, QAccessible::SelectionWithin);
    });
    whenActive(&OutlineView::itemToggled, [this](OutlineItem item) {
      QAccessible::State changed;
      changed.expanded = true;
      sendStateChange(m_rows.ofItem(item), changed);
    });
    whenActive(&OutlineView::descriptionChanged, [this](OutlineItem item) {
      send(m_rows.ofItem(item), QAccessible::DescriptionChanged);
      QAccessible::State changed;
      changed.busy = true;
      sendStateChange(m_rows.ofItem(item), changed);
    });
  }

  int childCount() const override { return static_cast<int>(topLevel().size()); }
  QAccessibleInterface* child(int index) const override {
    return index >= 0 && index < childCount()
               ? m_rows.of(topLevel()[static_cast<std::size_t>(index)])
               : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto* row = dynamic_cast<const RowInterface*>(child);
    return row && row->isTopLevel() ? row->position() : -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const QPoint point = m_view.viewport()->mapFromGlobal(QPoint(x, y));
    return m_view.viewport()->rect().contains(point) ? m_rows.ofRow(m_view.rowAtPoint(point))
                                                     : nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    return m_view.hasFocus() ? m_rows.ofRow(m_view.focusedRow()) : nullptr;
  }

private:
  OutlineView& m_view;
  mutable Rows m_rows;
  QObject m_listening;

  std::vector<Node>& topLevel() const {
    return m_view.outlineModel().children(m_view.outlineModel().root());
  }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  auto* view = className == QLatin1String(OutlineView::staticMetaObject.className())
                   ? qobject_cast<OutlineView*>(object)
                   : nullptr;
  return view ? new TreeInterface(*view) : nullptr;
}

}  // namespace

void install() {
  QAccessible::removeFactory(makeInterface);
  QAccessible::installFactory(makeInterface);
}

}  // namespace snaplift::outlineAccessible

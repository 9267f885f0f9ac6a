#include "apps/desktop/dialogs/layout.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <algorithm>
#include <numeric>

#include "apps/desktop/dialogs/radio_projection.h"
#include "apps/desktop/dialogs/section.h"

namespace desktop {

namespace ui = cad::ui;
using Shape = Projection::Shape;

namespace {

// A control, or a group with what stands in it, at the place of the first of them.
struct Node {
  Projection* control = nullptr;
  const ui::Group* group = nullptr;
  std::vector<std::unique_ptr<Node>> inner;
};
using Nodes = std::vector<std::unique_ptr<Node>>;

Nodes& nodesOf(Nodes& root, const ui::Group* group) {
  if (!group) return root;
  Nodes& outer = nodesOf(root, group->outer());
  const auto at = std::find_if(outer.begin(), outer.end(),
                               [group](const auto& node) { return node->group == group; });
  if (at != outer.end()) return (*at)->inner;
  outer.push_back(std::make_unique<Node>(Node{nullptr, group, {}}));
  return outer.back()->inner;
}

bool is(const Node& node, Shape shape) { return node.control && node.control->shape() == shape; }

bool isUnlabelled(const Node& node) {
  return (is(node, Shape::field) || is(node, Shape::list)) &&
         labelOf(node.control->control().label()).isEmpty();
}

const ui::Button* buttonOf(const Node& node) {
  return node.control ? dynamic_cast<const ui::Button*>(&node.control->control()) : nullptr;
}

// The split of heights into `columns` runs whose highest is the lowest: the first of each run.
std::vector<std::size_t> split(const std::vector<int>& heights, std::size_t columns) {
  int low = *std::max_element(heights.begin(), heights.end());
  int high = std::accumulate(heights.begin(), heights.end(), 0);
  const auto runs = [&](int limit) {
    std::vector<std::size_t> firsts;
    int sum = limit;
    for (std::size_t i = 0; i < heights.size(); ++i) {
      if (sum + heights[i] > limit) {
        firsts.push_back(i);
        sum = 0;
      }
      sum += heights[i];
    }
    return firsts;
  };
  while (low < high) {
    const int middle = (low + high) / 2;
    if (runs(middle).size() <= columns) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return runs(high);
}

class Builder {
 public:
  explicit Builder(int height) : height_(height) {}

  LayoutResult result;

  void fill(QVBoxLayout* column, const Nodes& nodes, int depth);
  void takeFoot(Nodes& nodes);

 private:
  std::size_t control(Section& section, const Nodes& nodes, std::size_t at);
  std::size_t radio(Section& section, const Nodes& nodes, std::size_t at);
  std::size_t groups(Section& section, const Nodes& nodes, std::size_t at, int depth);
  QGroupBox* box(const Node& node, bool titled, int depth);
  QLayout* flow(const std::vector<QGroupBox*>& boxes) const;

  int height_;
};

// From the first OK, Annulla or help button on, the dialog's own buttons stand at the foot.
void Builder::takeFoot(Nodes& nodes) {
  const auto first = std::find_if(nodes.begin(), nodes.end(), [](const auto& node) {
    const ui::Button* const button = buttonOf(*node);
    return button && button->role() != ui::Role::plain;
  });
  for (auto at = first; at != nodes.end(); ++at)
    if (buttonOf(**at)) result.foot.push_back((*at)->control);
  nodes.erase(std::remove_if(first, nodes.end(),
                             [](const auto& node) { return buttonOf(*node) != nullptr; }),
              nodes.end());
}

void Builder::fill(QVBoxLayout* column, const Nodes& nodes, int depth) {
  std::size_t at = 0;
  if (!nodes.empty() && is(*nodes.front(), Shape::picture)) {
    auto* const split = new QHBoxLayout;
    split->setSpacing(16);
    column->addLayout(split, 1);
    split->addWidget(nodes.front()->control->widget(), 0, Qt::AlignTop);
    column = new QVBoxLayout;
    column->setSpacing(6);
    split->addLayout(column, 1);
    at = 1;
  }
  Section section(column);
  while (at < nodes.size())
    at = nodes[at]->group ? groups(section, nodes, at, depth) : control(section, nodes, at);
  section.close();
}

std::size_t Builder::control(Section& section, const Nodes& nodes, std::size_t at) {
  Projection& here = *nodes[at]->control;
  switch (here.shape()) {
    case Shape::field:
      section.addField(here);
      break;
    case Shape::button:
      section.addButton(here);
      break;
    case Shape::line:
      section.addLine(here);
      break;
    case Shape::list:
      section.addList(here);
      break;
    case Shape::radio:
      return radio(section, nodes, at);
    case Shape::picture:
      section.add(here.widget(), 0);
      break;
    case Shape::check: {
      const Node* const next = at + 1 < nodes.size() ? nodes[at + 1].get() : nullptr;
      if (labelOf(here.control().label()).isEmpty() && next && is(*next, Shape::field)) {
        section.leadWith(here);
        break;
      }
      // What opens disabled is freed by the check box behind it.
      if (at > 0 && is(*nodes[at - 1], Shape::field) &&
          !nodes[at - 1]->control->control().enabled()) {
        section.addBeside(here);
        break;
      }
      std::vector<Projection*> checks;
      for (; at < nodes.size() && is(*nodes[at], Shape::check); ++at)
        checks.push_back(nodes[at]->control);
      section.addChecks(checks);
      return at;
    }
  }
  return at + 1;
}

// As many fields without labels of their own as there are buttons: each belongs to one.
std::size_t Builder::radio(Section& section, const Nodes& nodes, std::size_t at) {
  auto& radio = static_cast<RadioProjection&>(*nodes[at]->control);
  const std::size_t count = radio.buttons().size();
  std::vector<Projection*> fields;
  for (std::size_t i = at + 1; i < nodes.size() && fields.size() < count; ++i) {
    if (!isUnlabelled(*nodes[i])) break;
    fields.push_back(nodes[i]->control);
  }
  if (fields.size() != count) {
    section.addRadio(radio);
    return at + 1;
  }
  section.addRadioFields(radio, fields);
  return at + 1 + count;
}

QGroupBox* Builder::box(const Node& node, bool titled, int depth) {
  auto* const box = new QGroupBox;
  auto* const column = new QVBoxLayout(box);
  fill(column, node.inner, depth + 1);
  result.boxes.push_back({node.group, box, titled});
  return box;
}

std::size_t Builder::groups(Section& section, const Nodes& nodes, std::size_t at, int depth) {
  const Node* const before = at > 0 ? nodes[at - 1].get() : nullptr;
  std::vector<QGroupBox*> boxes;
  for (; at < nodes.size() && nodes[at]->group; ++at) {
    const bool repeated =
        boxes.empty() && before && is(*before, Shape::check) &&
        labelOf(before->control->control().label()) == labelOf(nodes[at]->group->title());
    boxes.push_back(box(*nodes[at], !repeated, depth));
  }
  if (boxes.size() == 1) {
    section.add(boxes.front(), depth == 0 ? 1 : 0);
  } else if (depth == 0) {
    section.add(flow(boxes));
  } else {
    auto* const across = new QHBoxLayout;
    for (QGroupBox* box : boxes) across->addWidget(box);
    section.add(across);
  }
  return at;
}

// In as few columns as the screen has room for.
QLayout* Builder::flow(const std::vector<QGroupBox*>& boxes) const {
  std::vector<int> heights;
  for (QGroupBox* box : boxes) heights.push_back(box->sizeHint().height() + 6);
  constexpr std::size_t most = 3;
  std::vector<std::size_t> firsts;
  for (std::size_t columns = 1; columns <= most; ++columns) {
    firsts = split(heights, columns);
    int highest = 0;
    for (std::size_t c = 0; c < firsts.size(); ++c) {
      const std::size_t end = c + 1 < firsts.size() ? firsts[c + 1] : heights.size();
      highest = std::max(highest, std::accumulate(heights.begin() + static_cast<long>(firsts[c]),
                                                  heights.begin() + static_cast<long>(end), 0));
    }
    if (highest <= height_) break;
  }
  auto* const across = new QHBoxLayout;
  across->setSpacing(12);
  for (std::size_t c = 0; c < firsts.size(); ++c) {
    auto* const column = new QVBoxLayout;
    across->addLayout(column, 1);
    const std::size_t end = c + 1 < firsts.size() ? firsts[c + 1] : heights.size();
    for (std::size_t i = firsts[c]; i < end; ++i) column->addWidget(boxes[i], 1);
  }
  return across;
}

}  // namespace

LayoutResult layOut(const std::vector<std::unique_ptr<Projection>>& controls, QWidget* body,
                    int height) {
  Nodes root;
  for (const auto& projection : controls)
    nodesOf(root, projection->control().group())
        .push_back(std::make_unique<Node>(Node{projection.get(), nullptr, {}}));
  Builder builder(height);
  builder.takeFoot(root);
  auto* const column = new QVBoxLayout(body);
  builder.fill(column, root, 0);
  return std::move(builder.result);
}

}  // namespace desktop

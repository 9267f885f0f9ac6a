#include "cad/drawing/select.h"

#include <algorithm>
#include <limits>

#include "platform/text.h"

namespace cad {
namespace {
constexpr std::size_t kEverything = std::numeric_limits<std::size_t>::max();
}

Filter::Filter(const resbuf* chain) { valid_ = parse(chain, root_, u""); }

// Reads items up to the closing operator; the outermost list closes at the end of the chain.
bool Filter::parse(const resbuf*& at, Node& group, std::u16string_view closing) {
  for (; at; at = at->rbnext) {
    Node node;
    const RbKind value = acutKindOf(at->restype);
    if (value == RbKind::text) node.text = at->resval.rstring;
    if (value == RbKind::int16) node.number = at->resval.rint;
    switch (at->restype) {
      case -4: {
        const std::u16string op = platform::upper(node.text);
        if (op == closing && !closing.empty()) return true;
        std::u16string_view close;
        if (op == u"<AND")
          node.kind = Kind::all, close = u"AND>";
        else if (op == u"<OR")
          node.kind = Kind::any, close = u"OR>";
        else if (op == u"<XOR")
          node.kind = Kind::one, close = u"XOR>";
        else if (op == u"<NOT")
          node.kind = Kind::none, close = u"NOT>";
        else
          return false;
        node.text.clear();
        at = at->rbnext;
        if (!parse(at, node, close) || !at) return false;
        break;
      }
      case 0:
      case RTDXF0:
        node.kind = Kind::type;
        break;
      case 2:
        node.kind = Kind::block;
        break;
      case 6:
        node.kind = Kind::linetype;
        break;
      case 8:
        node.kind = Kind::layer;
        break;
      case 62:
        node.kind = Kind::color;
        break;
      case 67:
        node.kind = Kind::paper;
        break;
      case 410:
        node.kind = Kind::layout;
        break;
      case 1001:
        node.kind = Kind::application;
        break;
      default:
        return false;
    }
    group.children.push_back(std::move(node));
  }
  return closing.empty();
}

bool Filter::test(const Drawing& d, std::uint32_t entity, const Node& node) {
  const Record& r = d.record(entity);
  switch (node.kind) {
    case Kind::all:
      return std::all_of(node.children.begin(), node.children.end(),
                         [&](const Node& n) { return test(d, entity, n); });
    case Kind::any:
      return std::any_of(node.children.begin(), node.children.end(),
                         [&](const Node& n) { return test(d, entity, n); });
    case Kind::one:
      return std::count_if(node.children.begin(), node.children.end(),
                           [&](const Node& n) { return test(d, entity, n); }) == 1;
    case Kind::none:
      return std::none_of(node.children.begin(), node.children.end(),
                          [&](const Node& n) { return test(d, entity, n); });
    case Kind::layer:
      return r.layer == static_cast<std::uint32_t>(node.number) && r.layer != 0;
    case Kind::block:
      return r.type == Type::insert && node.number != 0 &&
             r.name == static_cast<std::uint32_t>(node.number);
    case Kind::type:
      return r.typeName == static_cast<std::uint32_t>(node.number);
    case Kind::application:
      return d.records().sets().contains(r.apps, static_cast<std::uint32_t>(node.number)) &&
             node.number != 0;
    case Kind::paper:
      return r.is(Record::paper) == (node.number != 0);
    case Kind::layout: {
      // Entities of the model do not always say so.
      if (platform::equalNoCase(node.text, u"Model")) return r.owner == d.structure().modelSpace();
      if (r.owner == d.structure().modelSpace()) return false;
      const auto t = borrowTags();
      d.parse(entity, *t);
      const bool hit = platform::equalNoCase(t->textOr(410, u"", t->body()), node.text);
      return hit;
    }
    case Kind::color:
    case Kind::linetype: {
      const auto t = borrowTags();
      d.parse(entity, *t);
      bool hit;
      if (node.kind == Kind::color) {
        hit = t->integerOr(62, 256, t->subclass("AcDbEntity")) == node.number;
      } else {
        hit = platform::equalNoCase(t->textOr(6, u"ByLayer", t->subclass("AcDbEntity")), node.text);
      }
      return hit;
    }
  }
  return false;
}

// Texts become the drawing's own numbers once, so that each test compares numbers.
void Filter::resolve(const Drawing& d, Node& n) {
  if (n.kind == Kind::layer || n.kind == Kind::block || n.kind == Kind::type ||
      n.kind == Kind::application) {
    const NameTable& table = n.kind == Kind::type ? d.records().types() : d.names();
    n.number = static_cast<int>(table.find(n.text));
  }
  for (Node& c : n.children) resolve(d, c);
}

std::vector<std::uint32_t> Filter::passing(const Drawing& drawing,
                                           const std::vector<std::uint32_t>& entities) const {
  std::vector<std::uint32_t> found;
  if (!valid_) return found;
  Node root = root_;
  resolve(drawing, root);
  for (const std::uint32_t e : entities) {
    if (test(drawing, e, root)) found.push_back(e);
  }
  return found;
}

std::size_t Filter::estimate(Drawing& d, const Node& node) {
  const auto name = static_cast<std::uint32_t>(node.number);
  switch (node.kind) {
    case Kind::layer:
      return d.index().onLayer(name).size();
    case Kind::block:
      return d.index().ofBlock(name).size();
    case Kind::application:
      return d.index().withApplication(name).size();
    case Kind::all: {
      std::size_t best = kEverything;
      for (const Node& n : node.children) best = std::min(best, estimate(d, n));
      return best;
    }
    case Kind::any:
    case Kind::one: {
      std::size_t sum = 0;
      for (const Node& n : node.children) {
        const std::size_t e = estimate(d, n);
        if (e == kEverything) return kEverything;
        sum += e;
      }
      return sum;
    }
    default:
      return kEverything;
  }
}

void Filter::collect(Drawing& d, const Node& node, std::vector<std::uint32_t>& out) {
  const auto append = [&](const std::vector<std::uint32_t>& list) {
    out.insert(out.end(), list.begin(), list.end());
  };
  const auto name = static_cast<std::uint32_t>(node.number);
  switch (node.kind) {
    case Kind::layer:
      append(d.index().onLayer(name));
      break;
    case Kind::block:
      append(d.index().ofBlock(name));
      break;
    case Kind::application:
      append(d.index().withApplication(name));
      break;
    case Kind::all: {
      const Node* best = nullptr;
      std::size_t size = kEverything;
      for (const Node& n : node.children) {
        if (const std::size_t e = estimate(d, n); e < size) {
          size = e;
          best = &n;
        }
      }
      if (best) collect(d, *best, out);
      break;
    }
    default:
      for (const Node& n : node.children) collect(d, n, out);
      break;
  }
}

std::vector<std::uint32_t> Filter::select(Drawing& drawing) const {
  std::vector<std::uint32_t> found;
  if (!valid_) return found;
  Node root = root_;
  resolve(drawing, root);
  if (estimate(drawing, root) == kEverything) {
    found = drawing.index().allInSpace();
  } else {
    collect(drawing, root, found);
    if (!std::is_sorted(found.begin(), found.end())) std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
  }
  std::erase_if(found, [&](std::uint32_t e) {
    const Record& r = drawing.record(e);
    return r.is(Record::erased) || !r.is(Record::space) || r.is(Record::child) ||
           !test(drawing, e, root);
  });
  return found;
}

}  // namespace cad

#include "module/inp/full_diff.h"

#include "epanet/lexis.h"
#include "module/inp/full_export.h"
#include "module/network/kept_text.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
namespace {

using schema::Field;

const char* nameOf(const schema::Kind& kind) {
  return &kind == &schema::kJunc   ? "junction"
         : &kind == &schema::kResv ? "reservoir"
         : &kind == &schema::kTank ? "tank"
         : &kind == &schema::kPipe ? "pipe"
         : &kind == &schema::kPump ? "pump"
                                   : "valve";
}

const char* nameOf(Field field) {
  switch (field) {
    case Field::elevation:
      return "elevation";
    case Field::head:
      return "head";
    case Field::demand:
      return "demand";
    case Field::emitter:
      return "emitter";
    case Field::pattern:
      return "pattern";
    case Field::initLevel:
      return "initial level";
    case Field::minLevel:
      return "minimum level";
    case Field::maxLevel:
      return "maximum level";
    case Field::diameter:
      return "diameter";
    case Field::minVolume:
      return "minimum volume";
    case Field::volumeCurve:
      return "volume curve";
    case Field::length:
      return "length";
    case Field::roughness:
      return "roughness";
    case Field::minorLoss:
      return "minor loss";
    case Field::status:
      return "status";
    case Field::type:
      return "type";
    case Field::setting:
      return "setting";
    case Field::headCurve:
      return "head curve";
    case Field::power:
      return "power";
    case Field::speed:
      return "speed";
    case Field::speedPattern:
      return "speed pattern";
    case Field::efficiencyCurve:
      return "efficiency curve";
    case Field::price:
      return "price";
    case Field::pricePattern:
      return "price pattern";
    case Field::node1:
      return "first node";
    case Field::node2:
      return "second node";
    default:
      return "";
  }
}

std::u16string placeText(double x, double y) {
  return platform::widen(epanet::textOf(x) + ", " + epanet::textOf(y));
}

class Listing {
 public:
  Listing(const FullForm& form, const Comparison& comparison, DiffResult& result)
      : form_(form), network_(form.network()), comparison_(comparison), items_(result.items) {}

  void list() {
    for (const Rename& rename : comparison_.renames) {
      constexpr const char* kKinds[] = {"node", "link", "pattern", "curve"};
      add(DiffItem::What::renamed, kKinds[static_cast<std::size_t>(rename.kind)], rename.kept, "",
          rename.kept, rename.now);
    }
    for (const ChangedElement& element : comparison_.changed) listChange(element);
    for (const NewElement& element : comparison_.added) {
      add(element.copyOf.empty() ? DiffItem::What::added : DiffItem::What::copied,
          nameOf(*element.kind), element.name, "", element.copyOf, {});
    }
    for (const std::uint32_t node : comparison_.goneNodes) {
      constexpr const char* kKinds[] = {"junction", "reservoir", "tank"};
      add(DiffItem::What::gone, kKinds[static_cast<std::size_t>(network_.nodes[node].kind)],
          form_.nodeName(node), "", {}, {});
    }
    for (const std::uint32_t link : comparison_.goneLinks) {
      constexpr const char* kKinds[] = {"pipe", "pump", "valve"};
      add(DiffItem::What::gone, kKinds[static_cast<std::size_t>(network_.links[link].kind)],
          form_.linkName(link), "", {}, {});
    }
    for (const auto& series : comparison_.patterns) listSeries("pattern", series);
    for (const auto& series : comparison_.curves) listSeries("curve", series);
    for (const ChangedSetting& setting : comparison_.settings) {
      add(DiffItem::What::changed, "option", platform::widen(settingName(setting.option)), "value",
          platform::widen(setting.was), platform::widen(setting.now));
    }
  }

 private:
  void add(DiffItem::What what, std::string kind, std::u16string name, std::string field,
           std::u16string was, std::u16string now) {
    items_.push_back(
        {what, std::move(kind), std::move(name), std::move(field), std::move(was), std::move(now)});
  }

  void listChange(const ChangedElement& element) {
    const bool node = element.kind == &schema::kJunc || element.kind == &schema::kResv ||
                      element.kind == &schema::kTank;
    const std::u16string name =
        node ? form_.nodeName(element.index) : form_.linkName(element.index);
    for (const ChangedField& field : element.fields) {
      add(DiffItem::What::changed, nameOf(*element.kind), name, nameOf(field.field), field.was,
          field.now);
    }
    if (element.place) {
      const AcGePoint3d was = form_.placeOf(element.index);
      add(DiffItem::What::moved, nameOf(*element.kind), name, "", placeText(was.x, was.y),
          placeText(element.place->x, element.place->y));
    }
    if (element.vertices) {
      AcGePoint3dArray was;
      form_.course(element.index, was);
      const auto count = [](std::size_t n) { return platform::format(u"%d", static_cast<int>(n)); };
      add(DiffItem::What::course, nameOf(*element.kind), name, "", count(was.size() - 2),
          count(element.vertices->size()));
    }
  }

  template <class Record>
  void listSeries(const char* kind, const ChangedSeries<Record>& series) {
    if (series.index == epanet::kNone) {
      add(DiffItem::What::added, kind, series.now->id.str(), "", {}, {});
    } else {
      const std::u16string name = std::is_same_v<Record, EpaPattern>
                                      ? form_.patternName(series.index)
                                      : form_.curveName(series.index);
      add(series.now ? DiffItem::What::changed : DiffItem::What::gone, kind, name,
          series.now ? "values" : "", {}, {});
    }
  }

  const FullForm& form_;
  const epanet::Network& network_;
  const Comparison& comparison_;
  std::vector<DiffItem>& items_;
};

}  // namespace

DiffResult diffNetwork(std::u16string_view network, std::u16string_view path) {
  DiffResult result;
  std::unique_ptr<KeptFile> file;
  const bool byName = !path.empty();
  if (byName) {
    auto bytes = platform::readFile(platform::nativePath(path));
    if (bytes) {
      file = std::make_unique<KeptFile>(std::move(*bytes));
    } else {
      result.notices.push_back({NoticeCode::inpUnreadable, std::u16string(path)});
    }
  } else if (PackedText kept; loadPackedText(network, kept) != KeptState::none) {
    // One that is lost or damaged is told.
    file = keptFile(network, false, result.notices);
  }
  if (!file) return result;
  result.compared = true;
  const Comparison comparison =
      compareNetwork(network, file->network, byName ? Match::byName : Match::byTie);
  const FullForm form(file->network, comparison.renames);
  Listing(form, comparison, result).list();
  result.notices = comparison.notices;
  return result;
}

// --- fingerprints --------------------------------------------------------------------------------

namespace {

bool isHydraulic(epanet::Section section) {
  using epanet::Section;
  switch (section) {
    case Section::before:
    case Section::title:
    case Section::report:
    case Section::coordinates:
    case Section::vertices:
    case Section::labels:
    case Section::backdrop:
    case Section::tags:
    case Section::unknown:
    case Section::end:
      return false;
    default:
      return true;
  }
}

// Numbers by their value, words by their letters in capitals; what stands where does not matter
// within a row.
std::uint64_t hashOf(const epanet::Document& document) {
  std::uint64_t hash = 14695981039346656037u;
  const auto add = [&hash](std::string_view bytes) {
    for (const char c : bytes) {
      hash =
          (hash ^ static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 32 : c)) * 1099511628211u;
    }
    hash = (hash ^ 31) * 1099511628211u;
  };
  epanet::Tokens tokens;
  for (epanet::RowId row = 0; row < document.rows().size(); ++row) {
    const epanet::Row& own = document.rows()[row];
    if (own.kind != epanet::RowKind::data || !isHydraulic(own.section)) continue;
    document.tokens(row, tokens);
    add(headingOf(own.section));
    for (int i = 0; i < tokens.count; ++i) {
      // The first word is a name, whatever it looks like.
      const auto number = i == 0 ? std::nullopt : epanet::numberOf(tokens.text(i));
      add(number ? epanet::textOf(*number) : std::string(tokens.text(i)));
    }
  }
  return hash;
}

}  // namespace

std::u16string hydraulicsOf(std::u16string_view network) {
  ExportResult unheard;
  ExportRequest request{.network = network, .path = {}, .csvPath = {}};
  auto text = fullText(request, unheard);
  if (!text) return {};
  char digits[24];
  std::snprintf(digits, sizeof digits, "%016llx",
                static_cast<unsigned long long>(hashOf(epanet::Document(std::move(*text)))));
  return platform::widen(std::string_view(digits));
}

bool resultsAreStale(std::u16string_view network) {
  const ResultMark mark = loadResultMark(network);
  return !mark.fingerprint.empty() && mark.fingerprint != hydraulicsOf(network);
}

}  // namespace vessora

#include "module/inp/full_export.h"

#include "module/inp/full_rows.h"
#include "module/network/kept_text.h"
#include "module/network/settings_store.h"
#include "platform/beside.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {
namespace {

using epanet::Section;

// A file that has everything but elements: rows go to the end of their sections.
std::string emptyFile(std::u16string_view network) {
  EpaSettings settings;
  LoadSettings(settings, network);
  const std::string name = platform::narrow(network);
  std::string text = "[TITLE]\n" + name + "\n";
  constexpr struct {
    Section section;
    const char* columns;
  } kSections[] = {
      {Section::junctions, ";ID              Elev            Demand          Pattern"},
      {Section::reservoirs, ";ID              Head            Pattern"},
      {Section::tanks,
       ";ID              Elevation       InitLevel       MinLevel        MaxLevel        Diameter  "
       "      MinVol          VolCurve"},
      {Section::pipes,
       ";ID              Node1           Node2           Length          Diameter        Roughness "
       "      MinorLoss       Status"},
      {Section::pumps, ";ID              Node1           Node2           Parameters"},
      {Section::valves,
       ";ID              Node1           Node2           Diameter        Type            Setting   "
       "      MinorLoss"},
      {Section::status, ";ID              Status/Setting"},
      {Section::emitters, ";Junction        Coefficient"},
      {Section::patterns, ";ID              Multipliers"},
      {Section::curves, ";ID              X-Value         Y-Value"},
      {Section::energy, nullptr},
      {Section::reactions, nullptr},
      {Section::times, nullptr},
      {Section::options, nullptr},
      {Section::report, " Status\tNo\n Summary\tNo\n Nodes\tAll\n Links\tAll"},
      {Section::coordinates, ";Node            X-Coord         Y-Coord"},
      {Section::vertices, ";Link            X-Coord         Y-Coord"},
      {Section::end, nullptr},
  };
  for (const auto& own : kSections) {
    text += "\n";
    text += headingOf(own.section);
    text += "\n";
    if (own.columns) (text += own.columns) += "\n";
    text += settingRows(settings, own.section);
  }
  return text;
}

// The units in which values are written: those of the text, under the formula and the exponent that
// the drawing has now.
epanet::Units unitsNow(const epanet::Network& network, const Comparison& comparison) {
  epanet::Units units = epanet::unitsOf(network);
  for (const ChangedSetting& change : comparison.settings) {
    if (change.option == epanet::Option::headloss) {
      units.formula = change.now == "D-W"   ? epanet::Formula::darcyWeisbach
                      : change.now == "C-M" ? epanet::Formula::chezyManning
                                            : epanet::Formula::hazenWilliams;
    }
    if (change.option == epanet::Option::emitterExponent) {
      units.emitterExponent = platform::wtof(change.now);
    }
  }
  return units;
}

// The fields that an option which was changed gives other numbers for what is drawn.
std::vector<schema::Field> otherMeanings(const epanet::Units& was, const epanet::Units& now) {
  const epanet::Conversion before(was, epanet::drawingUnits(was));
  const epanet::Conversion after(now, epanet::drawingUnits(now));
  std::vector<schema::Field> fields;
  const auto compare = [&](epanet::Quantity quantity, schema::Field field) {
    if (before.factor(quantity) != after.factor(quantity)) fields.push_back(field);
  };
  compare(epanet::Quantity::roughness, schema::Field::roughness);
  compare(epanet::Quantity::emitter, schema::Field::emitter);
  return fields;
}

// The kept text with what has been changed, which is said.
std::string changedText(std::u16string_view network, const KeptFile& kept,
                        const Comparison& comparison, const epanet::Units& units,
                        Notices& notices) {
  const epanet::Record record = kept.record();
  epanet::Editor editor(kept.document);
  FullRows(network, kept.network, record, units, editor, notices).write(comparison);
  return editor.empty() ? kept.document.text() : editor.apply().text;
}

}  // namespace

epanet::Record KeptFile::record() const {
  epanet::Record record;
  const epanet::Network again(document, &record);
  return record;
}

namespace {

// A file on its way: null when the drawing's text turns out to be damaged.
using ComingFile = std::future<std::unique_ptr<KeptFile>>;

// Unpacking and reading need no drawing. Nothing when the drawing has a text that cannot be used.
std::optional<ComingFile> comingFile(std::u16string_view network, bool withoutText) {
  PackedText packed;
  switch (withoutText ? KeptState::none : loadPackedText(network, packed)) {
    case KeptState::lost:
    case KeptState::damaged:
      return std::nullopt;
    case KeptState::none:
      return platform::beside([text = emptyFile(network)]() mutable {
        return std::make_unique<KeptFile>(std::move(text));
      });
    case KeptState::whole:
      break;
  }
  return platform::beside([packed = std::move(packed)] {
    std::optional<std::string> text = unpackText(packed);
    return text ? std::make_unique<KeptFile>(std::move(*text)) : nullptr;
  });
}

void tellLost(std::u16string_view network, Notices& notices) {
  notices.push_back({NoticeCode::keptTextLost, std::u16string(network)});
}

}  // namespace

std::unique_ptr<KeptFile> keptFile(std::u16string_view network, bool withoutText,
                                   Notices& notices) {
  auto coming = comingFile(network, withoutText);
  auto kept = coming ? coming->get() : nullptr;
  if (!kept) tellLost(network, notices);
  return kept;
}

std::optional<std::string> fullText(const ExportRequest& request, ExportResult& result) {
  auto coming = comingFile(request.network, request.withoutText);
  std::unique_ptr<KeptFile> kept;
  Comparison comparison;
  if (coming) {
    const auto network = [&]() -> const epanet::Network* {
      if (coming->valid()) kept = coming->get();
      return kept ? &kept->network : nullptr;
    };
    comparison = compareNetwork(request.network, network,
                                request.rewrite ? Match::everything : Match::byTie);
  }
  if (!kept) {
    tellLost(request.network, result.notices);
    return std::nullopt;
  }
  if (comparison.drawn == 0) {
    result.notices.push_back({NoticeCode::nothingLeft, std::u16string(request.network)});
    return std::nullopt;
  }
  const epanet::Units units = unitsNow(kept->network, comparison);
  const auto others = otherMeanings(epanet::unitsOf(kept->network), units);
  if (!request.rewrite && !others.empty()) {
    comparison = compareNetwork(request.network, kept->network, Match::byTie, others);
  }
  const bool same = comparison.empty() && !request.units;
  std::string text;
  if (!same) text = changedText(request.network, *kept, comparison, units, result.notices);
  result.notices.insert(result.notices.end(), comparison.notices.begin(), comparison.notices.end());
  if (same) return std::move(kept->document).takeText();
  if (!request.units) return text;
  const KeptFile now(std::move(text));
  epanet::Converted converted =
      epanet::convert(now.document, now.network, now.record(), *request.units, request.solver);
  result.remarks = std::move(converted.remarks);
  return std::move(converted.edit.text);
}

}  // namespace vessora

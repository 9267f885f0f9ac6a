// What an element of an input file looks like in a drawing when the file is imported in full: the
// one place that says so, for drawing it, for comparing what is drawn, and for taking it back.
//
// Values are in the drawing's units (l/s, m, mm, kW, pressures in m), numbers as the shortest texts
// that read back. A value that several rows give is the one that the solver uses.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "epanet/network.h"
#include "epanet/places.h"
#include "epanet/units.h"
#include "module/host/host_drawing.h"
#include "module/network/kept_text.h"
#include "module/network/records.h"

namespace vessora {

// Ids and texts of a file, whose bytes are UTF-8 or Windows-1252.
class FileText {
 public:
  explicit FileText(bool utf8) : utf8_(utf8) {}
  std::u16string text(std::string_view bytes) const;
  // What the file's encoding lacks becomes "?".
  std::string bytes(std::u16string_view text) const;

 private:
  bool utf8_;
};

class FullForm {
 public:
  // The network stays the caller's. Things that the drawing has under another name than the text
  // are known by that name here; `renames` that fit nothing in the text do nothing.
  explicit FullForm(const epanet::Network& network, const std::vector<Rename>& renames = {});

  const epanet::Network& network() const { return network_; }
  const FileText& words() const { return words_; }
  const epanet::Conversion& toDrawing() const { return toDrawing_; }

  // --- names as the drawing has them
  std::u16string nodeName(std::uint32_t node) const;
  std::u16string linkName(std::uint32_t link) const;
  std::u16string patternName(std::uint32_t pattern) const;
  std::u16string curveName(std::uint32_t curve) const;
  // The network's index of a name of the drawing, or of a name as kept; kNone when there is none.
  std::uint32_t nodeNamed(std::u16string_view name) const;
  std::uint32_t nodeKeptAs(std::u16string_view id) const;
  std::uint32_t linkKeptAs(std::u16string_view id) const;

  // --- elements. Every field of the record is set.
  void fill(std::uint32_t node, EpaJunc& junction) const;
  void fill(std::uint32_t node, EpaResv& reservoir) const;
  void fill(std::uint32_t node, EpaTank& tank) const;
  void fill(std::uint32_t link, EpaPipe& pipe) const;
  void fill(std::uint32_t link, EpaPump& pump) const;
  void fill(std::uint32_t link, EpaValv& valve) const;

  // The height of a node's symbol, m; its place in plan, which is that of [COORDINATES], or one
  // near its neighbours.
  double heightOf(std::uint32_t node) const;
  AcGePoint3d placeOf(std::uint32_t node) const;
  bool isPlacedByUs(std::uint32_t node) const { return !network_.nodes[node].x.at; }
  // The course of a link from node to node, heights between them interpolated.
  void course(std::uint32_t link, AcGePoint3dArray& points) const;

  // --- patterns, curves
  EpaPattern pattern(std::uint32_t index) const;
  EpaCurve curve(std::uint32_t index) const;

 private:
  using Names = std::unordered_map<std::u16string, std::u16string>;
  std::u16string currentName(RenamedKind kind, std::u16string name) const;
  wide50 number(epanet::Quantity quantity, double value) const;

  const epanet::Network& network_;
  FileText words_;
  std::array<Names, 4> nowOf_;  // names of the drawing by those of the text, by kind
  Names keptNode_;              // and nodes' the other way round
  epanet::Conversion toDrawing_;
  std::vector<epanet::MapPoint> places_;  // of nodes; empty when all have coordinates
};

// The shortest text that reads back as the number.
wide50 shortest(double number);

}  // namespace vessora

// A small calculated network in memory, for the tests of what draws results.
#pragma once

#include <filesystem>
#include <fstream>

#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {

class CalculatedNetwork : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    acdbRegApp(u"HN-C_EPA_IMPOSTAZIONI");
    EpaSettings settings;
    settings.name = u"Rete";
    settings.isDefault = 1;
    SaveSettings(settings, true);
    root_ = std::filesystem::temp_directory_path() / ("vessora-draw-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root_);
    cad::Session::instance().setSymbol(u"hn-cpath", platform::widen(root_.string()) + u"\\");
  }
  void TearDown() override {
    std::filesystem::remove_all(root_);
    DrawnNetwork::TearDown();
  }

  static Chain nodeResult(double demand, double head, double pressure) {
    return Chain(acutBuildList(1001, app::kNodeResult, 1040, demand, 1040, head, 1040, pressure,
                               1000, u"0.00", RTNONE));
  }
  static Chain linkResult(double flow, double velocity, double headloss) {
    return Chain(acutBuildList(1001, app::kLinkResult, 1040, flow, 1040, velocity, 1040, headloss,
                               1000, u"Open", RTNONE));
  }
  AcDbObjectId junc(const std::u16string& id, const AcGePoint3d& at) {
    return addBlock(u"Junc", u"JUNC-Rete", at, {{u"ID", id}, {u"EL", u"0"}, {u"BD", u"0"}},
                    juncData(id, 0, u""));
  }
  AcDbObjectId junc(const std::u16string& id, const AcGePoint3d& at, double demand, double head) {
    const AcDbObjectId node = junc(id, at);
    Opened<AcDbEntity>(node, AcDb::kForWrite)
        ->setXData(nodeResult(demand, head, head - at.z).get());
    return node;
  }
  AcDbObjectId pipe(const char16_t* id, const char16_t* node1, const char16_t* node2,
                    const char16_t* length, const AcGePoint3dArray& points) {
    EpaPipe record;
    record.id = id;
    record.node1 = node1;
    record.node2 = node2;
    record.length = length;
    record.diameter = u"150";
    record.roughness = u"130";
    record.status = u"Open";
    const AcDbObjectId line = addPolyline(u"PIPE-Rete", points, pipeData(record));
    Opened<AcDbEntity>(line, AcDb::kForWrite)->setXData(linkResult(12.5, 0.7, 4).get());
    return line;
  }
  // A pump's block between two nodes.
  AcDbObjectId pump(const char16_t* id, const char16_t* node1, const char16_t* node2,
                    const AcGePoint3d& at) {
    EpaPump record;
    record.id = id;
    record.node1 = node1;
    record.node2 = node2;
    const AcDbObjectId symbol =
        addBlock(u"Pump", u"PUMP-Rete", at, {{u"ID", id}, {u"ST", u"Open"}}, pumpData(record));
    Opened<AcDbEntity>(symbol, AcDb::kForWrite)->setXData(linkResult(12.5, 0, -30).get());
    return symbol;
  }

  std::filesystem::path root_;
};

}  // namespace vessora

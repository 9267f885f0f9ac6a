#include "module/network/network_list.h"

#include <algorithm>

#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/text.h"

namespace vessora {

namespace {

int countOf(resbuf* filter) { return SelectionSet(u"_X", filter).size(); }

// The period of the first element that has results.
void readPeriod(NetworkInfo& info) {
  for (const schema::Kind* kind : {&schema::kJunc, &schema::kResv, &schema::kTank, &schema::kPipe,
                                   &schema::kPump, &schema::kValv}) {
    const SelectionSet set(u"_X", acutBuildList(8, schema::layerName(kind->layer, info.name), 1001,
                                                app::kPeriod, RTNONE));
    if (set.size() == 0) continue;
    const Opened<AcDbEntity> entity(set[0]);
    if (!entity) continue;
    info.hasResults = true;
    info.period =
        textAt(Chain(entity->xData(app::kPeriod)), schema::kPeriod, schema::Field::period);
    return;
  }
}

}  // namespace

std::u16string countingName(AcDbBlockReference& block) {
  const Chain data(block.xData(app::kImport));
  std::u16string name(data.text(1));
  if (name.empty()) ReadAttribute(&block, schema::kIdTag, name);
  return name;
}

NetworkInfo networkInfo(std::u16string_view name) {
  NetworkInfo info;
  info.name = name;
  const NetworkLayers layers(name);
  info.counts = {countOf(blocksOnLayerFilter(layers.junc)),
                 countOf(blocksOnLayerFilter(layers.resv)),
                 countOf(blocksOnLayerFilter(layers.tank)),
                 countOf(acutBuildList(RTDXF0, u"POLYLINE", 8, layers.pipe, RTNONE)),
                 countOf(blocksOnLayerFilter(layers.pump)),
                 countOf(blocksOnLayerFilter(layers.valv))};
  readPeriod(info);
  return info;
}

std::vector<NetworkInfo> networksOfDrawing() {
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  std::vector<NetworkInfo> networks;
  for (const std::u16string& name : names) {
    networks.push_back(networkInfo(name));
    networks.back().isDefault = !defaultName.empty() && defaultName == name;
  }
  return networks;
}

PickedNetwork pickNetwork(std::u16string_view wanted, std::u16string_view hint) {
  using Why = PickedNetwork::Why;
  PickedNetwork picked;
  wide256 defaultName;
  ListNetworks(picked.names, defaultName);
  const auto has = [&](std::u16string_view name) {
    return !name.empty() &&
           (std::find(picked.names.begin(), picked.names.end(), name) != picked.names.end() ||
            (schema::isAqueductName(name) && countOf(acutBuildList(8, name, RTNONE)) > 0));
  };
  const auto take = [&](std::u16string_view name) {
    picked.why = Why::found;
    picked.name = name;
  };
  if (!wanted.empty()) {
    has(wanted) ? take(wanted) : void(picked.why = Why::unknown);
  } else if (has(hint)) {
    take(hint);
  } else if (!defaultName.empty()) {
    take(defaultName);
  } else if (picked.names.size() == 1) {
    take(picked.names.front());
  } else {
    picked.why = picked.names.empty() ? Why::none : Why::several;
  }
  return picked;
}

std::u16string networkLike(std::u16string_view name) {
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  const auto at = std::find_if(names.begin(), names.end(), [name](const std::u16string& other) {
    return platform::equalNoCase(name, other);
  });
  return at == names.end() ? std::u16string() : *at;
}

}  // namespace vessora

#include "sim/controller.h"

#include <algorithm>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

bool IsAt(const CEeprom& eeprom, UINT8 bus, UINT8 address) {
    return eeprom.Bus() == bus && eeprom.Address() == (address & 0xFE);
}

} // namespace

void CManagementController::AddFruDevice(UINT8 id, CStorage storage, FruDeviceOptions options) {
    m_fruDevices.insert_or_assign(id, CFruDevice(std::move(storage), options));
}

void CManagementController::AddFruDevice(UINT8 id, BYTES bytes, FruDeviceOptions options) {
    AddFruDevice(id, CStorage(std::move(bytes)), options);
}

void CManagementController::AddEeprom(UINT8 bus, UINT8 address, EEPROM_KIND kind, CStorage storage,
                                      EepromOptions options) {
    const auto even = static_cast<UINT8>(address & 0xFE);
    std::erase_if(m_eeproms, [&](const CEeprom& eeprom) { return IsAt(eeprom, bus, even); });
    m_eeproms.emplace_back(bus, even, kind, std::move(storage), options);
}

void CManagementController::AddEeprom(UINT8 bus, UINT8 address, EEPROM_KIND kind, BYTES bytes, EepromOptions options) {
    AddEeprom(bus, address, kind, CStorage(std::move(bytes)), options);
}

const BYTES& CManagementController::FruBytes(UINT8 id) const {
    return m_fruDevices.at(id).Storage().Bytes();
}

const BYTES& CManagementController::EepromBytes(UINT8 bus, UINT8 address) const {
    for (const CEeprom& eeprom : m_eeproms)
        if (IsAt(eeprom, bus, address))
            return eeprom.Storage().Bytes();
    throw std::out_of_range("no such EEPROM");
}

IpmiAnswer CManagementController::Handle(const IpmiRequest& request, bool store) {
    if (request.netFn == NETFN_APP && request.cmd == CMD_MASTER_WRITE_READ)
        return MasterWriteRead(request, store);
    if (request.netFn == NETFN_APP && request.cmd == CMD_GET_DEVICE_ID)
        return GetDeviceId(request);
    if (request.netFn == NETFN_STORAGE && request.cmd >= CMD_GET_FRU_AREA_INFO && request.cmd <= CMD_WRITE_FRU_DATA)
        return AccessFru(request, store);
    return Refuse(CC_INVALID_COMMAND);
}

IpmiAnswer CManagementController::GetDeviceId(const IpmiRequest& request) const {
    if (request.lun != 0)
        return Refuse(CC_INVALID_LUN);
    if (!request.data.empty())
        return Refuse(CC_BAD_LENGTH);
    const DeviceIdentity& id = m_identity;
    const auto byteOf = [](UINT32 value, unsigned int position) {
        return static_cast<UINT8>(value >> (8 * position) & 0xFF);
    };
    return {.data = {id.deviceId, id.deviceRevision, id.firmwareMajor, id.firmwareMinor, id.ipmiVersion,
                     id.additionalSupport, byteOf(id.manufacturer, 0), byteOf(id.manufacturer, 1),
                     byteOf(id.manufacturer, 2), byteOf(id.product, 0), byteOf(id.product, 1), 0, 0, 0, 0}};
}

IpmiAnswer CManagementController::AccessFru(const IpmiRequest& request, bool store) {
    const BYTES& data = request.data;
    if (request.lun != 0)
        return Refuse(CC_INVALID_LUN);
    const bool isGoodLength = request.cmd == CMD_GET_FRU_AREA_INFO ? data.size() == 1
                              : request.cmd == CMD_READ_FRU_DATA   ? data.size() == 4
                                                                   : data.size() >= 3;
    if (!isGoodLength)
        return Refuse(CC_BAD_LENGTH);
    const auto found = m_fruDevices.find(data[0]);
    if (found == m_fruDevices.end())
        return Refuse(CC_NOT_PRESENT);
    CFruDevice& device = found->second;
    if (request.cmd == CMD_GET_FRU_AREA_INFO)
        return device.AreaInfo();
    const auto offset = static_cast<UINT16>(data[1] | data[2] << 8);
    if (request.cmd == CMD_READ_FRU_DATA)
        return device.Read(offset, data[3]);
    return device.Write(offset, std::span(data).subspan(3), store);
}

IpmiAnswer CManagementController::MasterWriteRead(const IpmiRequest& request, bool store) {
    const BYTES& data = request.data;
    if (data.size() < 3)
        return Refuse(CC_BAD_LENGTH);
    bool isBusThere = false;
    for (CEeprom& eeprom : m_eeproms) {
        if (IsAt(eeprom, data[0], data[1]))
            return eeprom.Transfer(std::span(data).subspan(3), data[2], store);
        isBusThere = isBusThere || eeprom.Bus() == data[0];
    }
    return Refuse(isBusThere ? CC_NAK_ON_WRITE : CC_INVALID_FIELD);
}

} // namespace Frudata_Sim

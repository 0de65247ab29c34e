#include "sim/fronts.h"

#include "frudata/bmclib.h"

#include <algorithm>

namespace Frudata_Sim {

namespace {

constexpr int IMB_SUCCESS = 0;
constexpr int IMB_FAILED = 1;
constexpr int IMB_INVALID = 2;

bool IsValid(const _IMBPREQUESTDATA* request, const UINT8* responseData, const int* responseLength,
             const UINT8* completionCode) {
    return request && responseData && responseLength && completionCode && *responseLength >= 0 &&
           request->rsSa == BMC_ADDRESS && request->busType == 0 && request->netFn < 0x40 && request->rsLun < 4 &&
           request->dataLength >= 0 && (request->data || request->dataLength == 0);
}

int Serve(CSimulatedBmc& bmc, const _IMBPREQUESTDATA& request, UINT8* responseData, int& responseLength,
          UINT8& completionCode) {
    const IpmiAnswer answer = bmc.Execute({.netFn = request.netFn,
                                           .lun = request.rsLun,
                                           .cmd = request.cmdType,
                                           .data = BYTES(request.data, request.data + request.dataLength)},
                                          FRONT::IMB);
    if (answer.delivery == DELIVERY::TRANSPORT_ERROR)
        return answer.transportStatus;
    if (answer.delivery == DELIVERY::SILENCE || answer.data.size() > static_cast<unsigned int>(responseLength))
        return IMB_FAILED;
    std::copy(answer.data.begin(), answer.data.end(), responseData);
    responseLength = static_cast<int>(answer.data.size());
    completionCode = answer.completionCode;
    return IMB_SUCCESS;
}

} // namespace

int ServeImbRequest(const _IMBPREQUESTDATA* request, UINT8* responseData, int* responseLength, UINT8* completionCode) {
    if (!IsValid(request, responseData, responseLength, completionCode))
        return IMB_INVALID;
    CSimulatedBmc* const bmc = CurrentBmc();
    try {
        return bmc ? Serve(*bmc, *request, responseData, *responseLength, *completionCode) : IMB_FAILED;
    } catch (...) {
        return IMB_FAILED;
    }
}

} // namespace Frudata_Sim

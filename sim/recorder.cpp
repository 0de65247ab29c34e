#include "sim/recorder.h"

namespace Frudata_Sim {

namespace {

constexpr const char* FRONT_NAMES[] = {"DIRECT", "IMB", "KCS", "SESSION", "BRIDGE"};

std::string Hex(unsigned int value) {
    constexpr char digits[] = "0123456789ABCDEF";
    return {digits[value >> 4 & 0x0F], digits[value & 0x0F]};
}

std::string Hex(const BYTES& bytes) {
    std::string text;
    for (const UINT8 byte : bytes)
        text += ' ' + Hex(byte);
    return text;
}

std::string AnswerText(const IpmiAnswer& answer) {
    switch (answer.delivery) {
    case DELIVERY::TRANSPORT_ERROR:
        return "transport error " + std::to_string(answer.transportStatus);
    case DELIVERY::SILENCE:
        return "silence";
    default:
        return Hex(answer.completionCode) + ':' + Hex(answer.data);
    }
}

} // namespace

std::string FormatExchange(const Exchange& exchange) {
    const IpmiRequest& request = exchange.request;
    std::string text = FRONT_NAMES[static_cast<unsigned int>(exchange.front)];
    if (exchange.front == FRONT::BRIDGE)
        text += " channel " + std::to_string(exchange.channel);
    return text + ' ' + Hex(exchange.controller) + " netFn " + Hex(request.netFn) + " lun " +
           std::to_string(request.lun) + " cmd " + Hex(request.cmd) + ':' + Hex(request.data) + " -> " +
           AnswerText(exchange.answer);
}

std::string FormatExchanges(const std::vector<Exchange>& exchanges) {
    std::string text;
    for (const Exchange& exchange : exchanges)
        text += FormatExchange(exchange) + '\n';
    return text;
}

} // namespace Frudata_Sim

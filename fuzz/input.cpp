#include "fuzz/input.h"

#include "fruimage/bytes.h"

namespace Frudata_Fuzz {

using FruImage::ZeroChecksum;

void RepairArea(BYTES& area) {
    area.resize(std::min<std::size_t>(area.size(), 2040) / 8 * 8);
    if (area.empty())
        return;
    area[1] = static_cast<UINT8>(area.size() / 8);
    area.back() = 0;
    area.back() = ZeroChecksum(area);
}

void RepairImage(BYTES& image) {
    if (image.size() < 8)
        return;
    image[0] = 1;
    image[6] = image[7] = 0;
    image[7] = ZeroChecksum(std::span(image).first(8));
    for (std::size_t place = 2; place <= 4; ++place) {
        const std::size_t start = image[place] * 8U;
        const std::size_t size = start + 1 < image.size() ? image[start + 1] * 8U : 0;
        if (start == 0 || size == 0 || start + size > image.size())
            continue;
        UINT8& checksum = image[start + size - 1];
        checksum = 0;
        checksum = ZeroChecksum(std::span(image).subspan(start, size));
    }
}

BYTES SendMessageData(CInput& input) {
    const UINT8 control = input.Byte();
    BYTES data = input.Take(control & 0x3F);
    if ((control & 0xC0) == 0xC0 || data.size() < 8)
        return data;
    data[3] = ZeroChecksum(std::span(data).subspan(1, 2));
    data.back() = ZeroChecksum(std::span(data).first(data.size() - 1).subspan(4));
    return data;
}

void RequireBridgedAnswer(const BYTES& sent, std::span<const UINT8> frame) {
    // channel, responder, netFn/LUN, checksum, requester, sequence/LUN, command
    Require(sent.size() >= 8 && frame.size() >= 8);
    Require(frame[0] == (sent[0] & 0x0F));
    Require(frame[1] == ((sent[2] | 4) & 0xFC) + (sent[5] & 3));
    Require(((sent[4] + frame[1] + frame[2]) & 0xFF) == 0);
    Require(frame[3] == sent[1] && frame[4] == (sent[5] & 0xFC) + (sent[2] & 3) && frame[5] == sent[6]);
    Require(ZeroChecksum(frame.subspan(3)) == 0);
}

} // namespace Frudata_Fuzz

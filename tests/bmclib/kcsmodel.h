// The host of these tests: a KCS interface seen from the BMC (IPMI 2.0, section 9) and what alarm, sleep, usleep
// and iopl leave behind. No test waits: an alarm strikes after some reads of a port.
#pragma once

#include "frudata/bmclib.h"

#include <algorithm>
#include <functional>
#include <vector>

using BYTES = std::vector<UINT8>;

constexpr int ALWAYS = 1 << 30;

/// From write number `first` to `last`, counted from 1, status reads show these bits cleared and set.
struct STATUS_FAULT {
    int first = 1;
    int last = 0;
    UINT8 clear = 0;
    UINT8 set = 0;
    int reads = ALWAYS; ///< so many status reads after each write
};

struct HOST {
    std::function<BYTES(const BYTES&)> m_Answer; ///< takes a request frame, gives the response frame
    STATUS_FAULT m_Fault;
    UINT8 m_Attention = 0x04; ///< the SMS attention flag
    int m_EveryPort = -1;     ///< what every port reads, unless negative
    BYTES m_Request;          ///< the last request frame
    BYTES m_Written;          ///< every byte and control code written
    UINT16 m_LastPort = 0;    ///< the last one read
    size_t m_StatusReads = 0;
    int m_ReadsSinceWrite = 0; ///< of the status
    size_t m_DataReads = 0;
    unsigned int m_AlarmSeconds = 0; ///< pending alarm
    int m_ReadsUnderAlarm = 0;
    unsigned int m_SleptMilliseconds = 0;
    int m_PortRequests = 0;

    UINT8 m_State = 0x00;
    UINT8 m_OutFull = 0;
    BYTES m_Out; ///< the bytes to follow in reverse, at its end the one in the data register
    bool m_LastByteNext = false;

    UINT8 Read(UINT16 port) {
        m_LastPort = port;
        if (m_EveryPort >= 0)
            return static_cast<UINT8>(m_EveryPort);
        if (port == KCSAddress + 1) {
            ++m_StatusReads;
            const int writes = static_cast<int>(m_Written.size());
            const bool isFaulty =
                writes >= m_Fault.first && writes <= m_Fault.last && ++m_ReadsSinceWrite <= m_Fault.reads;
            const STATUS_FAULT fault = isFaulty ? m_Fault : STATUS_FAULT{};
            return static_cast<UINT8>(((m_State | m_OutFull | m_Attention) & ~fault.clear) | fault.set);
        }
        ++m_DataReads;
        m_OutFull = 0;
        return m_Out.empty() ? UINT8{0} : m_Out.back();
    }
    void Write(UINT8 value, UINT16 port) {
        m_Written.push_back(value);
        m_ReadsSinceWrite = 0;
        if (port == KCSAddress + 1) {
            m_State = value == 0x60 ? 0xC0 : 0x80;
            m_LastByteNext = value == 0x62;
            if (value == 0x61)
                m_Request = {}, m_OutFull = 0;
            return;
        }
        if (m_State == 0x80)
            m_Request.push_back(value);
        if (m_State == 0x80 && m_LastByteNext) {
            m_Out = m_Answer(m_Request);
            std::reverse(m_Out.begin(), m_Out.end());
        } else if (m_State == 0xC0)
            m_Out = {0x02}; // the error status byte
        else if (m_State == 0x40 && value == 0x68)
            m_Out.pop_back();
        else
            return;
        m_State = m_Out.empty() ? 0x00 : 0x40;
        m_OutFull = 1;
    }
};

extern HOST g_host;

// A KCS interface seen from the BMC (IPMI 2.0, section 9): the registers behind the test's inb and outb.
#pragma once

#include "frudata/bmclib.h"

#include <algorithm>
#include <functional>
#include <vector>

using BYTES = std::vector<UINT8>;

/// From write number `first` to `last`, counted from 1, status reads show these bits cleared and set.
struct STATUS_FAULT {
    int first;
    int last;
    UINT8 clear;
    UINT8 set;
};

struct KCS_MODEL {
    std::function<BYTES(const BYTES&)> m_Answer; ///< takes a request frame, gives the response frame
    STATUS_FAULT m_Fault = {1, 0, 0, 0};
    bool m_Attention = true; ///< the SMS attention flag
    BYTES m_Request;         ///< the last request frame
    BYTES m_Written;         ///< every byte and control code written
    int m_StatusReads = 0;
    int m_DataReads = 0;

    UINT8 m_State = 0x00;
    BYTES m_Out; ///< the bytes to follow in reverse, at its end the one in the data register
    bool m_OutFull = false;
    bool m_LastByteNext = false;

    void Put(UINT8 state) {
        m_State = state;
        m_OutFull = true;
    }
    UINT8 Read(UINT16 port) {
        if (port == KCSAddress + 1) {
            ++m_StatusReads;
            const int writes = static_cast<int>(m_Written.size());
            const bool faulty = writes >= m_Fault.first && writes <= m_Fault.last;
            const int status = m_State | (m_OutFull ? 1 : 0) | (m_Attention ? 4 : 0);
            return static_cast<UINT8>(faulty ? (status & ~m_Fault.clear) | m_Fault.set : status);
        }
        ++m_DataReads;
        m_OutFull = false;
        return m_Out.empty() ? UINT8{0} : m_Out.back();
    }
    void Write(UINT8 value, UINT16 port) {
        m_Written.push_back(value);
        if (port == KCSAddress + 1) {
            m_State = value == 0x60 ? 0xC0 : 0x80;
            m_LastByteNext = value == 0x62;
            if (value == 0x61) {
                m_Request.clear();
                m_OutFull = false;
            }
        } else if (m_State == 0xC0) {
            m_Out = {0x02}; // the error status byte
            Put(0x40);
        } else if (m_State == 0x40 && value == 0x68) {
            m_Out.pop_back();
            Put(m_Out.empty() ? 0x00 : 0x40);
        } else if (m_State == 0x80) {
            m_Request.push_back(value);
            if (!m_LastByteNext)
                return;
            m_Out = m_Answer(m_Request);
            std::reverse(m_Out.begin(), m_Out.end());
            Put(m_Out.empty() ? 0x00 : 0x40);
        }
    }
};

/// The host: what its inb, outb, alarm, sleep, usleep and iopl work on. No test waits: an alarm strikes after some
/// reads of a port.
struct HOST {
    KCS_MODEL m_Kcs;
    unsigned int m_AlarmSeconds = 0; ///< pending alarm
    int m_ReadsUnderAlarm = 0;
    int m_Sleeps = 0;
    int m_PortRequests = 0;
    int m_ShortSleeps = 0;
};

extern HOST g_host;

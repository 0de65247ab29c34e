// The BMC's side of a KCS interface (IPMI 2.0, section 9), as a data and a status/command register.
#pragma once

#include "sim/simulatedbmc.h"

namespace Frudata_Sim {

/// Status register bits and interface states.
enum : UINT8 {
    KCS_OBF = 0x01,
    KCS_IBF = 0x02,
    KCS_SMS_ATN = 0x04,
    KCS_STATE_MASK = 0xC0,
    KCS_IDLE = 0x00,
    KCS_READ = 0x40,
    KCS_WRITE = 0x80,
    KCS_ERROR = 0xC0
};

/// Deviations from the standard's flow.
struct KcsOptions {
    UINT16 basePort = 0x0CA2;         ///< data port; status and command are the next one
    unsigned int notReadyPolls = 0;   ///< status reads after each write for which IBF stays set
    unsigned int notReadyOutput = 0;  ///< status reads for which a ready byte does not show as OBF
    bool outputWhileWriting = false;  ///< a byte to be discarded appears in the data port after each write
    UINT8 stuckSet = 0;               ///< status bits that always read 1
    UINT8 stuckClear = 0;             ///< status bits that always read 0
    bool errorOnWriteStart = false;   ///< WRITE_START leads to the error state
    unsigned int errorAfterBytes = 0; ///< the error state follows this many answer bytes read; 0: never
};

/// Accesses since the start or ResetCounts.
struct KcsCounts {
    unsigned int statusReads = 0;
    unsigned int dataReads = 0;
    unsigned int commandWrites = 0;
    unsigned int dataWrites = 0;
    unsigned int violations = 0; ///< a write while IBF was set, a data read while OBF was clear
    unsigned int aborts = 0;
};

class CKcsModel {
  public:
    explicit CKcsModel(CSimulatedBmc& bmc, const KcsOptions& options = {}) : m_bmc(bmc), m_options(options) {}

    /// 0xFF for a port that is not the interface's.
    UINT8 ReadPort(UINT16 port);
    void WritePort(UINT8 value, UINT16 port);

    KcsOptions& Options() { return m_options; }
    const KcsCounts& Counts() const { return m_counts; }
    void ResetCounts() { m_counts = {}; }
    /// Puts the interface into the error state, like a BMC that lost its place.
    void EnterError(UINT8 code = 0xFF);

  private:
    enum class PHASE {
        IDLE,
        WRITE,
        WRITE_LAST,
        READ,
        ABORT_STATUS, ///< waits for the 0x00 that follows GET_STATUS/ABORT
        ABORT_END,    ///< the error code is out; waits for READ
        ERROR
    };

    UINT8 ReadStatus();
    UINT8 ReadData();
    void TakeCommand(UINT8 command);
    void TakeData(UINT8 value);
    void Answer();
    void PutNextByte();
    void PutByte(UINT8 value);
    void Enter(PHASE phase);

    CSimulatedBmc& m_bmc;
    KcsOptions m_options;
    KcsCounts m_counts;
    PHASE m_phase = PHASE::IDLE;
    BYTES m_request;
    BYTES m_answer;
    std::size_t m_answerPosition = 0;
    bool m_outputFull = false;
    UINT8 m_output = 0;
    UINT8 m_errorCode = 0;
    unsigned int m_inputBusy = 0;
    unsigned int m_outputDelay = 0;
};

} // namespace Frudata_Sim

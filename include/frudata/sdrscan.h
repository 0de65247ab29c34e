/** frudata: finding every FRU device of a server in the BMC's SDR repository. C++ only. @file */
#ifndef FRUDATA_SDRSCAN_H
#define FRUDATA_SDRSCAN_H

#include "frudata/locator.h"
#include "frudata/orderedlist.h"

#pragma GCC visibility push(default)
extern "C" {

/**
 * Walks the SDR repository (IPMI 2.0, section 33) and appends one new locator per FRU Device Locator
 * record, then one per Management Controller Device Locator record, each in repository order, to
 * `list`. The caller owns the list and the locators: delete each before the list.
 *
 * `Initialize` must have succeeded before. A failure ends the walk; locators decoded before it are still
 * appended. An unsupported record type anywhere in the repository yields no locator at all. A record that
 * leads back to an earlier one ends the walk, and so do more locators than the count before it. Each end but
 * the last record's is a line of the debug log at level 1; no message is recorded. Stack: about 80 KiB over
 * KCS.
 *
 * @return always 0
 */
EFI_STATUS ScanSystemForFruLocators(OrderedList<FRU_LOCATOR*>*& list);

} // extern "C"
#pragma GCC visibility pop

#endif

/* SPDX-License-Identifier: GPL-2.0 */
/*
 * What is read from and written to /dev/panelboard, the other side of the board's wires.
 *
 * A read gives one event: this head and, if has_data, `length` bytes that were sent. A transfer
 * waits until its answer is written: this head with its number and `result` (0, or a negative
 * errno), and `length` bytes to receive if the event said wants_data and all went well. An answer
 * to a transfer that nobody waits for any more is passed over.
 */
#ifndef PANELBOARD_H
#define PANELBOARD_H

#include <linux/types.h>

enum panelboard_kind {
    PANELBOARD_LEVEL,    /* line `number` was driven to `level` */
    PANELBOARD_TRANSFER, /* message `number` */
};

struct panelboard_event {
    __u32 kind;
    __u32 number;
    __u32 length;
    __u8 level;
    __u8 has_data;
    __u8 wants_data;
    __u8 unused;
};

struct panelboard_answer {
    __u32 number;
    __s32 result;
};

#endif

// SPDX-License-Identifier: GPL-2.0
/*
 * The instrument's board for a kernel that has none: an SPI controller with bus number 2 and one
 * device that spidev takes, and a GPIO chip whose lines begin at 745. What a program does to them
 * can be read from /dev/panelboard, in the order in which it happened; the answers to SPI messages
 * are written there. For tests only.
 */
#include "panelboard.h"

#include <linux/bitmap.h>
#include <linux/gpio/driver.h>
#include <linux/list.h>
#include <linux/miscdevice.h>
#include <linux/module.h>
#include <linux/mutex.h>
#include <linux/platform_device.h>
#include <linux/poll.h>
#include <linux/slab.h>
#include <linux/spi/spi.h>
#include <linux/uaccess.h>
#include <linux/wait.h>

#define FIRST_LINE 745
#define LINES 64
#define BUS 2

struct entry {
    struct list_head list;
    struct panelboard_event event;
    u8 data[];
};

static struct platform_device* device;
static struct spi_controller* controller;

/* Guards all below. */
static DEFINE_MUTEX(lock);
static LIST_HEAD(events);
static unsigned int waiting;
static bool attached; /* somebody has the character device open: nobody else reads events */
static DECLARE_WAIT_QUEUE_HEAD(event_queued);

static struct {
    bool active;
    bool answered;
    u32 number;
    s32 result;
    struct spi_transfer* transfer;
} message;
static DECLARE_WAIT_QUEUE_HEAD(message_answered);

static DECLARE_BITMAP(outputs, LINES);
static DECLARE_BITMAP(levels, LINES);

static void drop_first(void) {
    struct entry* entry = list_first_entry(&events, struct entry, list);

    list_del(&entry->list);
    waiting--;
    kfree(entry);
}

/* With the lock held and the device attached. */
static int queue_event(const struct panelboard_event* event, const void* data) {
    size_t size = event->has_data ? event->length : 0;
    struct entry* entry = kmalloc(sizeof(*entry) + size, GFP_KERNEL);

    if (!entry)
        return -ENOMEM;
    entry->event = *event;
    if (size)
        memcpy(entry->data, data, size);
    list_add_tail(&entry->list, &events);
    waiting++;
    wake_up_interruptible(&event_queued);
    return 0;
}

/* The lines. They can sleep, as those of a chip behind a bus. */

/* With the lock held and the device attached. */
static void queue_level(unsigned int line) {
    struct panelboard_event event = {
        .kind = PANELBOARD_LEVEL,
        .number = line,
        .level = test_bit(line, levels),
    };

    queue_event(&event, NULL);
}

static void drive(unsigned int line, int level) {
    mutex_lock(&lock);
    assign_bit(line, levels, level);
    if (attached)
        queue_level(line);
    mutex_unlock(&lock);
}

static int get_direction(struct gpio_chip* chip, unsigned int line) {
    return test_bit(line, outputs) ? GPIO_LINE_DIRECTION_OUT : GPIO_LINE_DIRECTION_IN;
}

static int direction_input(struct gpio_chip* chip, unsigned int line) {
    clear_bit(line, outputs);
    return 0;
}

static int direction_output(struct gpio_chip* chip, unsigned int line, int level) {
    set_bit(line, outputs);
    drive(line, level);
    return 0;
}

static int get_level(struct gpio_chip* chip, unsigned int line) {
    return !test_bit(line, outputs) || test_bit(line, levels); /* inputs are pulled up */
}

static void set_level(struct gpio_chip* chip, unsigned int line, int level) {
    drive(line, level);
}

static struct gpio_chip lines = {
    .label = "panelboard",
    .owner = THIS_MODULE,
    .base = FIRST_LINE,
    .ngpio = LINES,
    .can_sleep = true,
    .get_direction = get_direction,
    .direction_input = direction_input,
    .direction_output = direction_output,
    .get = get_level,
    .set = set_level,
};

/* The bus */

static int transfer_one(struct spi_controller* bus, struct spi_device* spi,
                        struct spi_transfer* transfer) {
    struct panelboard_event event = {
        .kind = PANELBOARD_TRANSFER,
        .length = transfer->len,
        .has_data = transfer->tx_buf != NULL,
        .wants_data = transfer->rx_buf != NULL,
    };
    int result;

    mutex_lock(&lock);
    if (!attached) { /* nothing is on the wires */
        if (transfer->rx_buf)
            memset(transfer->rx_buf, 0, transfer->len);
        mutex_unlock(&lock);
        return 0;
    }
    message.transfer = transfer;
    message.answered = false;
    message.active = true;
    event.number = ++message.number;
    result = queue_event(&event, transfer->tx_buf);
    mutex_unlock(&lock);

    if (!result)
        result = wait_event_killable(message_answered, READ_ONCE(message.answered));

    mutex_lock(&lock);
    if (!result)
        result = message.result;
    message.active = false;
    mutex_unlock(&lock);
    return result;
}

/* With the lock held. */
static void end_message(s32 result) {
    message.result = result;
    WRITE_ONCE(message.answered, true);
    wake_up(&message_answered);
}

static int register_bus(void) {
    struct spi_device* spi;
    int result;

    controller = spi_alloc_master(&device->dev, 0);
    if (!controller)
        return -ENOMEM;
    controller->bus_num = BUS;
    controller->num_chipselect = 1;
    controller->mode_bits = SPI_CPOL | SPI_CPHA | SPI_CS_HIGH | SPI_LSB_FIRST | SPI_NO_CS;
    controller->bits_per_word_mask = SPI_BPW_MASK(8);
    controller->transfer_one = transfer_one;
    result = spi_register_controller(controller);
    if (result) {
        spi_controller_put(controller);
        return result;
    }

    spi = spi_alloc_device(controller);
    if (!spi) {
        result = -ENOMEM;
        goto unregister;
    }
    strscpy(spi->modalias, "panel", sizeof(spi->modalias));
    spi->max_speed_hz = 20000000;
    spi->driver_override = kstrdup("spidev", GFP_KERNEL);
    result = spi_add_device(spi);
    if (!result)
        return 0;
    spi_dev_put(spi);
unregister:
    spi_unregister_controller(controller);
    return result;
}

/* The character device: one reader at a time */

static int board_open(struct inode* inode, struct file* file) {
    unsigned int line;
    int result = 0;

    mutex_lock(&lock);
    if (attached) {
        result = -EBUSY;
    } else {
        attached = true;
        for_each_set_bit(line, outputs, LINES) queue_level(line);
    }
    mutex_unlock(&lock);
    return result;
}

static int board_release(struct inode* inode, struct file* file) {
    mutex_lock(&lock);
    attached = false;
    while (!list_empty(&events))
        drop_first();
    if (message.active)
        end_message(-EIO);
    mutex_unlock(&lock);
    return 0;
}

static ssize_t board_read(struct file* file, char __user* buffer, size_t size, loff_t* offset) {
    struct entry* entry;
    size_t length;
    ssize_t result;

    mutex_lock(&lock);
    while (list_empty(&events)) {
        mutex_unlock(&lock);
        if (file->f_flags & O_NONBLOCK)
            return -EAGAIN;
        if (wait_event_interruptible(event_queued, READ_ONCE(waiting)))
            return -ERESTARTSYS;
        mutex_lock(&lock);
    }
    entry = list_first_entry(&events, struct entry, list);
    length = entry->event.has_data ? entry->event.length : 0;
    result = sizeof(entry->event) + length;
    if (size < result)
        result = -EMSGSIZE;
    else if (copy_to_user(buffer, &entry->event, sizeof(entry->event)) ||
             copy_to_user(buffer + sizeof(entry->event), entry->data, length))
        result = -EFAULT;
    else
        drop_first();
    mutex_unlock(&lock);
    return result;
}

static ssize_t board_write(struct file* file, const char __user* buffer, size_t size,
                           loff_t* offset) {
    struct panelboard_answer answer;
    struct spi_transfer* transfer;
    ssize_t result = size;

    if (size < sizeof(answer))
        return -EINVAL;
    if (copy_from_user(&answer, buffer, sizeof(answer)))
        return -EFAULT;
    mutex_lock(&lock);
    if (!message.active || message.answered || message.number != answer.number)
        goto out;
    transfer = message.transfer;
    if (!answer.result && transfer->rx_buf) {
        if (size != sizeof(answer) + transfer->len) {
            result = -EINVAL;
            goto out;
        }
        if (copy_from_user(transfer->rx_buf, buffer + sizeof(answer), transfer->len)) {
            result = -EFAULT;
            goto out;
        }
    }
    end_message(answer.result);
out:
    mutex_unlock(&lock);
    return result;
}

static __poll_t board_poll(struct file* file, poll_table* table) {
    poll_wait(file, &event_queued, table);
    return READ_ONCE(waiting) ? EPOLLIN | EPOLLRDNORM : 0;
}

static const struct file_operations operations = {
    .owner = THIS_MODULE,
    .open = board_open,
    .release = board_release,
    .read = board_read,
    .write = board_write,
    .poll = board_poll,
    .llseek = no_llseek,
};

static struct miscdevice character_device = {
    .minor = MISC_DYNAMIC_MINOR,
    .name = "panelboard",
    .fops = &operations,
    .mode = 0600,
};

static int __init panelboard_init(void) {
    int result;

    device = platform_device_register_simple("panelboard", PLATFORM_DEVID_NONE, NULL, 0);
    if (IS_ERR(device))
        return PTR_ERR(device);
    lines.parent = &device->dev;
    result = gpiochip_add_data(&lines, NULL);
    if (result)
        goto no_lines;
    result = register_bus();
    if (result)
        goto no_bus;
    result = misc_register(&character_device);
    if (result)
        goto no_character_device;
    return 0;

no_character_device:
    spi_unregister_controller(controller);
no_bus:
    gpiochip_remove(&lines);
no_lines:
    platform_device_unregister(device);
    return result;
}

static void __exit panelboard_exit(void) {
    misc_deregister(&character_device);
    spi_unregister_controller(controller);
    gpiochip_remove(&lines);
    platform_device_unregister(device);
}

module_init(panelboard_init);
module_exit(panelboard_exit);
MODULE_DESCRIPTION("The instrument's board, for tests");
MODULE_LICENSE("GPL");

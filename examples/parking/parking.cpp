// parking.cpp: a parking meter, for the typed face of the library: each step of a sale is a dialog.
//
//   parking [FOLDER]    FOLDER holds parking.res, utils_rc.res and images, and receives
//   parking.ini,
//                       the logs and signature.png; default: the present one
#include "parking.hpp" // the strings, made of parking.toml and Monitor.toml
#include "terminal.h"
#include "toolkit.h"

#include <unistd.h>

#include <algorithm>
#include <string>

namespace {

using uti::Outcome;
using uti::Result;

constexpr int32_t centsAnHour[] = {240, 120, 60}; // of the zones A, B and C
constexpr int32_t hoursAtMost = 12;
constexpr int32_t signFrom = 500;
constexpr uint32_t bankTakes = 3000; // ticks

struct Ticket {
    bool isCar = true;
    std::size_t zone = 0;
    std::string plate;
    int32_t cents = 0;

    char zoneName() const { return static_cast<char>('A' + zone); }
    int32_t minutes() const { return cents * 60 / price(); }
    int32_t price() const { return isCar ? centsAnHour[zone] : centsAnHour[zone] / 2; }
};

int32_t centsOf(const std::string &amount) {
    int32_t cents = 0;
    for (const char each : amount)
        if (each >= '0' && each <= '9')
            cents = cents * 10 + (each - '0');
    return cents;
}

// The time of day so many minutes from now.
std::string timeIn(int32_t minutes) {
    TerminalDate date;
    TerminalTime time;
    GetDateTime(&date, &time);
    const int32_t at = time.hour * 60 + time.minute + minutes;
    return uti::format("%02d:%02d", at / 60 % 24, at % 60);
}

class Meter {
public:
    explicit Meter(const uti::Module &strings) : strings_(strings) {}

    // False when it is to be switched off.
    bool serve() {
        uti::setLanguage("en");
        const auto language =
            uti::choose(dialog(PARKING_CHOOSE, PARKING_WELCOME),
                        {{strings_.text(PARKING_ENGLISH), {}, "images/en.png"},
                         {strings_.text(PARKING_RUSSIAN), {}, "images/ru.png"},
                         {strings_.text(PARKING_UKRAINIAN), {}, "images/uk.png"}});
        if (!language)
            return false;
        constexpr const char *languages[] = {"en", "ru", "uk"};
        uti::setLanguage(languages[*language]);
        ticket_ = {};
        const Result result = sell();
        if (result)
            finish();
        else
            giveUp(result);
        return true;
    }

private:
    uti::Dialog dialog(uti::DialogId id, uint16_t caption, uti::Text text = {}) const {
        return {.id = id, .caption = strings_.text(caption), .text = std::move(text)};
    }

    Result sell() {
        Result (Meter::*const steps[])() = {
            &Meter::chooseVehicle, &Meter::chooseZone, &Meter::enterPlate, &Meter::enterAmount,
            &Meter::confirm,       &Meter::askBank,    &Meter::sign};
        Result result;
        for (auto step = std::begin(steps); step != std::end(steps) && result; ++step)
            result = (this->**step)();
        return result;
    }

    // The second picture is the Escape key's.
    Result chooseVehicle() {
        const Result result = uti::select(
            dialog(PARKING_CHOOSE_VEHICLE, PARKING_WELCOME, strings_.text(PARKING_VEHICLE)),
            {.first = strings_.text(PARKING_CAR),
             .second = strings_.text(PARKING_MOTORCYCLE),
             .firstSuffix = "car.png",
             .secondSuffix = "motorcycle.png"});
        ticket_.isCar = result == Outcome::confirmed;
        return result == Outcome::cancelled ? Result{} : result;
    }

    Result chooseZone() {
        std::vector<uti::Item> zones;
        for (ticket_.zone = 0; ticket_.zone < std::size(centsAnHour); ++ticket_.zone)
            zones.emplace_back(
                strings_.format(PARKING_ZONE, ticket_.zoneName()),
                strings_.format(PARKING_PRICE, ticket_.price() / 100, ticket_.price() % 100),
                uti::format("images/zone_%c.png", ticket_.zoneName()));
        const auto zone = uti::choose(dialog(PARKING_CHOOSE, PARKING_ZONES), zones);
        ticket_.zone = zone.value_or(0);
        return zone.status;
    }

    Result enterPlate() {
        const auto plate = uti::edit(
            dialog(PARKING_ENTER_PLATE, PARKING_PLATE, strings_.text(PARKING_PLATE_TEXT)));
        ticket_.plate = plate.value_or("");
        return plate.status;
    }

    // Asks until it is something. A digit that would make it too much is not taken.
    Result enterAmount() {
        const int32_t most = hoursAtMost * ticket_.price();
        uti::Dialog asked =
            dialog(PARKING_ENTER_AMOUNT, PARKING_AMOUNT, strings_.text(PARKING_AMOUNT_TEXT));
        asked.labels = {{"hint", strings_.format(PARKING_AMOUNT_HINT, most / 100, most % 100)}};
        const uti::Edit amount{
            .radix = 2, .filledFromRight = true, .keyPressed = [&](int32_t, std::string &typed) {
                const int32_t cents = centsOf(typed);
                typed = uti::format("%d.%02d", cents / 100, cents % 100);
                return cents > 0 && cents <= most;
            }};
        Result result;
        for (ticket_.cents = 0; result && ticket_.cents == 0;) {
            const auto entered = uti::edit(asked, amount);
            ticket_.cents = centsOf(entered.value_or(""));
            result = entered.status;
        }
        return result;
    }

    Result confirm() {
        return uti::confirm(dialog(PARKING_CONFIRM_SALE, PARKING_AMOUNT,
                                   strings_.format(PARKING_CONFIRM, ticket_.plate,
                                                   ticket_.zoneName(), timeIn(ticket_.minutes()))),
                            {strings_.text(PARKING_PAY), strings_.text(PARKING_BACK)});
    }

    // The bank of this meter lives here: it takes its time and says yes, unless it is cancelled.
    Result askBank() {
        const uint32_t start = GetTicks();
        uint32_t elapsed = 0;
        uint16_t step = 0;
        uti::Dialog work = dialog(PARKING_WORK, PARKING_BANK);
        work.breaks = [&] { return elapsed >= bankTakes; };
        work.refresh = [&](uti::Labels &labels) {
            elapsed = GetTicks() - start;
            igProgress_SetValue(
                currentGraphicProgressBarParameters.entries[0].handle,
                static_cast<int32_t>(std::min(elapsed, bankTakes) * 100 / bankTakes));
            const uint16_t now =
                elapsed < bankTakes / 2 ? PARKING_BANK_CARD : PARKING_BANK_APPROVAL;
            if (now == std::exchange(step, now))
                return false;
            labels = {{"step", strings_.text(now)}};
            return true;
        };
        const Result result = uti::confirm(work, {.first = strings_.text(PARKING_CANCEL)});
        if (result == Outcome::broken_off)
            return {};
        return result ? Result::of(UTI_DIALOG_CANCELLED) : result; // Enter presses Cancel, too
    }

    Result sign() {
        if (ticket_.cents < signFrom)
            return {};
        return uti::sign(
            dialog(PARKING_SIGN_HERE, PARKING_SIGN,
                   strings_.format(PARKING_SIGN_TEXT, ticket_.cents / 100, ticket_.cents % 100)),
            "signature.png");
    }

    void finish() {
        const int number = settings_.get<int>("TICKETS", "LAST", 0) + 1;
        settings_.set("TICKETS", "LAST", number);
        TerminalDate date;
        TerminalTime time;
        GetDateTime(&date, &time);
        uti::trace::support(PARKING_SOLD, number, ticket_.plate, ticket_.zoneName(), ticket_.cents,
                            ticket_.minutes(), date, time);
        uti::monitor::write(MONITOR_SOLD, ticket_.zoneName(), ticket_.cents);
        tell(PARKING_THANKS, "images/done.png",
             strings_.format(PARKING_THANKS_TEXT, number, timeIn(ticket_.minutes())));
    }

    void giveUp(Result result) {
        uti::trace::error(PARKING_ABANDONED, result.code);
        uti::monitor::write(MONITOR_ABANDONED, result.code);
        tell(PARKING_SORRY, "images/failed.png", strings_.text(PARKING_SORRY_TEXT));
    }

    void tell(uint16_t caption, const char *image, uti::Text text) const {
        uti::Dialog message = dialog(PARKING_TELL, caption, std::move(text));
        message.image = image;
        uti::show(message);
    }

    const uti::Module &strings_;
    uti::Ini settings_{"parking.ini"};
    Ticket ticket_;
};

} // namespace

int main(int argc, char **argv) {
    if (argc > 2 || (argc == 2 && chdir(argv[1]) != 0)) {
        std::fputs("usage: parking [FOLDER]\n", stderr);
        return 2;
    }
    const uti::Module strings(PARKING_MODULE, 1);
    if (!strings) {
        std::fprintf(stderr, "parking: no parking.res of version 1 here: %d\n", strings.result());
        return 1;
    }
    const uti::trace::Log log({.mode = 3, .baseName = "parking", .maxSize = 1 << 20});
    const uti::monitor::Log events({.baseName = "parking"});
    uti::trace::support(PARKING_STARTED, UTILS_GetVersion());
    SetBackgroundImage_IG("images/background.png");

    Meter meter(strings);
    while (meter.serve())
        ;
    return 0;
}

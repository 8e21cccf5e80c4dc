#pragma once

/// A sound card of the test's own, which Qt finds as it finds others: its microphone hears a tone,
/// and what it plays is lost. There is no other card for this process.
namespace SoundCard {

/// Leaves Qt no plugins but those that it has loaded, and the card's. To be called before anything
/// looks for a card.
void install();

/// There is none at first. What is recorded or played ends when it is pulled out.
void plugIn();
void pullOut();

} // namespace SoundCard

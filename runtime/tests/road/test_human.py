#!/usr/bin/env python3
"""Five sentences that a person read aloud."""

from road import RoadTest, main, script


class Human(RoadTest):
    def test_sentences(self):
        human = script("human-sentences")
        total = human.run(self.engine())
        self.assertGreater(total.words, 50)
        self.assertLess(human.wer.rate(total), 0.40)


if __name__ == "__main__":
    main()
